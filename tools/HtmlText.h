#pragma once

#include <string>
#include <string_view>

namespace veral3::tools {

// Text as the content or a quoted attribute of an HTML element: well-formed UTF-8, markup escaped,
// control characters replaced.
std::string HtmlText(std::string_view text);

}  // namespace veral3::tools
