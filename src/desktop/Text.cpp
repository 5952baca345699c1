#include "desktop/Text.h"

#include "ui/modules/Format.h"
#include "ui/modules/Wording.h"

namespace quarn::desktop {

QString toQt(std::string_view text) {
    QString result = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    for (QChar& c : result)
        if (c.category() == QChar::Other_Control || c.category() == QChar::Other_Format) c = QChar(0xFFFD);
    return result;
}

QString orUnknown(std::string_view text) { return toQt(text.empty() ? format::unknown : text); }

QString say(std::string_view text) { return QString::fromStdString(worded(text)); }

} // namespace quarn::desktop
