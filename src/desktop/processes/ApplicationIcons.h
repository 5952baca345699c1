#pragma once

#include <QIcon>
#include <QObject>
#include <string>
#include <string_view>
#include <unordered_map>

namespace quarn::desktop {

/// The pictures of applications as the desktop's menus have them, by the file name of their program. Menus
/// and pictures are read once, off the main thread.
class ApplicationIcons : public QObject {
    Q_OBJECT
public:
    explicit ApplicationIcons(QObject* parent = nullptr);

    /// The picture of the program at `path`; nullptr when there is none, or not yet.
    const QIcon* find(std::string_view path) const;
    bool empty() const { return icons_.empty(); }

Q_SIGNALS:
    void arrived();

private:
    std::unordered_map<std::string, QIcon> icons_;
};

} // namespace quarn::desktop
