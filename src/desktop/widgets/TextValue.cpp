#include "desktop/widgets/TextValue.h"

#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace quarn::desktop {

namespace {

constexpr auto property = "textValue";

class PaintedWidget final : public QAccessibleWidget {
public:
    explicit PaintedWidget(QWidget* widget) : QAccessibleWidget(widget, QAccessible::Chart) {}

    QString text(QAccessible::Text wanted) const override {
        if (wanted == QAccessible::Value) return object()->property(property).toString();
        return QAccessibleWidget::text(wanted);
    }
};

QAccessibleInterface* describe(const QString&, QObject* object) {
    if (!object || !object->isWidgetType() || !object->property(property).isValid()) return nullptr;
    return new PaintedWidget(static_cast<QWidget*>(object));
}

} // namespace

void setTextValue(QWidget* widget, const QString& text) {
    [[maybe_unused]] static const bool installed = [] {
        QAccessible::installFactory(describe);
        return true;
    }();
    const QVariant before = widget->property(property);
    if (before.isValid() && before.toString() == text) return;
    widget->setProperty(property, text);
    if (!QAccessible::isActive()) return;
    QAccessibleValueChangeEvent changed(widget, text);
    QAccessible::updateAccessibility(&changed);
}

} // namespace quarn::desktop
