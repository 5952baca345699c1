#pragma once

#include <QIcon>
#include <QObject>
#include <string>
#include <string_view>
#include <unordered_map>

namespace quarn::desktop {

/// The pictures of applications as the desktop's menus have them. Menus and pictures are read once, off the
/// main thread.
class ApplicationIcons : public QObject {
    Q_OBJECT
public:
    /// Those that all lists share; it lives as long as the application.
    static ApplicationIcons& shared();

    /// The picture of the program at `path`, or of the entry of a menu that lies there; nullptr when there is
    /// none, or not yet.
    const QIcon* find(std::string_view path) const;
    bool empty() const { return icons_.empty(); }

Q_SIGNALS:
    void arrived();

private:
    explicit ApplicationIcons(QObject* parent);

    std::unordered_map<std::string, QIcon> icons_;
};

} // namespace quarn::desktop
