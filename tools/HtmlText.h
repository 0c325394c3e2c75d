#pragma once

#include <string>
#include <string_view>

namespace veral3::tools {

// Text as the content or a quoted attribute of an HTML element: printable (tools/PrintableText.h),
// markup escaped.
std::string HtmlText(std::string_view text);

}  // namespace veral3::tools
