#include "desktop/panels/Placement.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"

#include <QGuiApplication>
#include <algorithm>

namespace quarn::desktop {

namespace {

int area(const QRect& rect) { return rect.isEmpty() ? 0 : rect.width() * rect.height(); }

QRect movedInto(QRect frame, const QRect& screen) {
    frame.moveLeft(std::max(screen.left(), std::min(frame.left(), screen.right() - frame.width() + 1)));
    frame.moveTop(std::max(screen.top(), std::min(frame.top(), screen.bottom() - frame.height() + 1)));
    return frame;
}

} // namespace

QPoint besideAnchor(QSize size, const QRect& anchor, const QRect& screen) {
    constexpr int gap = 4;
    const bool below = anchor.center().y() < screen.center().y();
    const int y = below ? anchor.bottom() + 1 + gap : anchor.top() - gap - size.height();
    return movedInto(QRect(QPoint(anchor.center().x() - size.width() / 2, y), size), screen).topLeft();
}

QRect keptVisible(const QRect& frame, const QList<QRect>& screens) {
    if (screens.isEmpty()) return frame;
    const auto distance = [&](const QRect& screen) {
        return (movedInto(frame, screen).topLeft() - frame.topLeft()).manhattanLength();
    };
    const auto best = std::max_element(screens.begin(), screens.end(), [&](const QRect& a, const QRect& b) {
        const int shownOnA = area(a & frame), shownOnB = area(b & frame);
        return shownOnA != shownOnB ? shownOnA < shownOnB : distance(a) > distance(b);
    });
    return movedInto(frame, *best);
}

QRect cascadePlace(QSize size, const QRect& screen, const QList<QRect>& taken) {
    constexpr int edge = 2 * Theme::gap;
    const auto isFree = [&](const QRect& place) {
        return std::none_of(taken.begin(), taken.end(), [&](const QRect& t) { return t.intersects(place); });
    };
    for (int x = screen.right() + 1 - edge - size.width(); x >= screen.left(); x -= size.width() + Theme::gap)
        for (int y = screen.top() + edge; y + size.height() <= screen.bottom() + 1;
             y += size.height() + Theme::gap)
            if (const QRect place(QPoint(x, y), size); isFree(place)) return place;
    // A full screen: on top of others, each a little further.
    const int offset = edge * (static_cast<int>(taken.size()) % 8 + 1);
    return movedInto(QRect(screen.topLeft() + QPoint(offset, offset), size), screen);
}

bool isWayland() { return QGuiApplication::platformName().startsWith(QLatin1String("wayland")); }

QString placementNotice() {
    if (canPlaceWindows()) return {};
    return say(
        "This desktop does not let windows choose their place or stay on top; panels can be moved, but "
        "they open where the desktop puts them. Its window menu may offer to keep a panel above others.");
}

} // namespace quarn::desktop
