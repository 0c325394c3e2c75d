#pragma once

// Veral3: one include for an application.
#include "common/CString.h"
#include "common/LanguageType.h"
#include "common/Messages.h"
