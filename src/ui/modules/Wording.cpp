#include "ui/modules/Wording.h"

namespace quarn {

std::string worded(std::string_view text) { return std::string(text); }

} // namespace quarn
