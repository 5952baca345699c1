#pragma once

#include "HelperKit/CancelToken.h"
#include "HelperKit/SerialQueue.h"

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
    /// Those that all lists share; they end when the application begins to.
    static ApplicationIcons& shared();

    /// The picture of the program at `path`, or of the entry of a menu that lies there; nullptr when there is
    /// none, or not yet.
    const QIcon* find(std::string_view path) const;
    bool empty() const { return icons_.empty(); }

Q_SIGNALS:
    void arrived();

private:
    ApplicationIcons();
    ~ApplicationIcons() override;

    std::unordered_map<std::string, QIcon> icons_;
    CancelToken ended_;
    SerialQueue queue_{"com.kelmora.quarn.icons"}; ///< last: what runs on it ends first
};

} // namespace quarn::desktop
