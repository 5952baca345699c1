#include "desktop/widgets/PageSearch.h"

#include "desktop/Icon.h"
#include "desktop/Text.h"

#include <QShortcut>

namespace quarn::desktop {

namespace {

constexpr int searchWidth = 200;

/// Gives the keys to `widget`, or to the first within it that takes them.
void focusWithin(QWidget& widget) {
    if (widget.focusPolicy() & Qt::TabFocus) return widget.setFocus();
    for (QWidget* next = widget.nextInFocusChain(); widget.isAncestorOf(next);
         next = next->nextInFocusChain())
        if (next->focusPolicy() & Qt::TabFocus && next->isVisible() && next->isEnabled())
            return next->setFocus();
}

} // namespace

PageSearch::PageSearch(QWidget& page, QWidget& searched, const QString& name, const QString& hint) {
    setPlaceholderText(say("Search (Ctrl+F)"));
    setToolTip(hint);
    setAccessibleName(name);
    setClearButtonEnabled(true);
    addAction(icon("search"), LeadingPosition);
    setFixedWidth(searchWidth);
    // Wherever the keys go in the window: only the page that is shown hears it.
    connect(new QShortcut(QKeySequence::Find, &page), &QShortcut::activated, this, [this] {
        setFocus(Qt::ShortcutFocusReason);
        selectAll();
    });
    const auto shortcut = [&](const QKeySequence& keys, auto work) {
        connect(new QShortcut(keys, this, nullptr, nullptr, Qt::WidgetShortcut), &QShortcut::activated,
                &searched, work);
    };
    shortcut(Qt::Key_Escape, [this, &searched] {
        clear();
        focusWithin(searched);
    });
    shortcut(Qt::Key_Down, [&searched] { focusWithin(searched); });
}

} // namespace quarn::desktop
