#include "desktop/widgets/RangePicker.h"

#include "desktop/Text.h"
#include "ui/settings/Prefs.h"

#include <QToolTip>

namespace quarn::desktop {

RangePicker::RangePicker(Prefs& prefs, QWidget* parent) : QComboBox(parent), prefs_(prefs) {
    addItems({say("1 minute"), say("5 minutes"), say("30 minutes")});
    setAccessibleName(say("Span of the graphs"));
    setToolTip(say("How far back the graphs reach"));
    follow();
    connect(this, &QComboBox::activated, this, [this](int index) {
        try {
            prefs_.historyRange.set(static_cast<HistoryRange>(index));
        } catch (const SettingsError& error) {
            follow();
            QToolTip::showText(mapToGlobal(QPoint(0, height())), toQt(error.what()).toHtmlEscaped(), this);
        }
    });
}

double RangePicker::follow() {
    const HistoryRange stored = prefs_.historyRange.get();
    if (const int index = static_cast<int>(stored); index != currentIndex()) setCurrentIndex(index);
    return seconds(stored);
}

} // namespace quarn::desktop
