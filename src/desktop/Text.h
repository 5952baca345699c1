#pragma once

#include <QString>
#include <string_view>

namespace quarn::desktop {

/// A text of the engine as Qt wants it. What comes from strangers (names, paths, addresses) loses its control
/// characters; labels that show it are plain text.
QString toQt(std::string_view text);
/// The same, or "—" where there is none.
QString orUnknown(std::string_view text);

/// The one translation hook: every text that people read goes through it. English is the text itself.
QString say(std::string_view text);

} // namespace quarn::desktop
