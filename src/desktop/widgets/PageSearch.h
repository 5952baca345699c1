#pragma once

#include <QLineEdit>

namespace quarn::desktop {

/// The search field of a page. Ctrl+F in the window goes to it while its page is shown; Escape clears it and
/// Down leaves it as it is, and both go to what is searched.
class PageSearch : public QLineEdit {
    Q_OBJECT
public:
    /// `searched`, or the first within it that takes keys, gets them afterwards. `name` is for screen
    /// readers, `hint` tells what is looked at.
    PageSearch(QWidget& page, QWidget& searched, const QString& name, const QString& hint);
};

} // namespace quarn::desktop
