#pragma once

// Veral3 in one include: align a learner's recording to a sentence, measure it, grade it.
// Start with core/AnalyzedAudio.h, whose head shows a whole run.
#include "common/CString.h"
#include "common/LanguageType.h"
#include "common/Messages.h"
#include "core/AlignedAudio.h"
#include "core/AnalyzedAudio.h"
#include "grading/GradedAudio.h"
#include "recognition/CheckModelFile.h"
#include "recognition/ModelFileType.h"
#include "storage/AnnotatedAudio.h"
#include "storage/HLYFile.h"
#include "storage/SavedAlignedAudio.h"
#include "text/PrepareSentence.h"
