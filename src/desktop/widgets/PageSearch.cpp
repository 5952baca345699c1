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
    const auto shortcut = [](const QKeySequence& keys, QWidget* within, QWidget* receiver, auto work) {
        auto* made = new QShortcut(keys, within, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
        connect(made, &QShortcut::activated, receiver, work);
    };
    shortcut(QKeySequence::Find, &page, this, [this] {
        setFocus(Qt::ShortcutFocusReason);
        selectAll();
    });
    shortcut(Qt::Key_Escape, this, &searched, [this, &searched] {
        clear();
        focusWithin(searched);
    });
    shortcut(Qt::Key_Down, this, &searched, [&searched] { focusWithin(searched); });
}

} // namespace quarn::desktop
