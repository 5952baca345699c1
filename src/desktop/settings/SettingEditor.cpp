#include "desktop/settings/SettingEditor.h"

#include "desktop/Page.h"
#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/settings/ListEditor.h"
#include "ui/modules/Format.h"
#include "ui/settings/Pref.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QTimer>
#include <cmath>

namespace quarn::desktop {

namespace {

double number(const SettingValue& value) {
    if (const auto* whole = std::get_if<int64_t>(&value)) return static_cast<double>(*whole);
    const auto* real = std::get_if<double>(&value);
    return real ? *real : 0;
}

class CheckEditor final : public SettingEditor {
public:
    explicit CheckEditor(QWidget* parent) : SettingEditor(parent), box_(new QCheckBox) {
        adopt(box_);
        connect(box_, &QCheckBox::toggled, this, [this](bool on) { Q_EMIT edited(on); });
    }
    void setValue(const SettingValue& value) override {
        const QSignalBlocker quiet(box_);
        box_->setChecked(value == SettingValue(true));
    }

private:
    QCheckBox* box_;
};

class ChoiceEditor final : public SettingEditor {
public:
    ChoiceEditor(std::vector<std::pair<SettingValue, QString>> choices, QString unit, QWidget* parent)
        : SettingEditor(parent), choices_(std::move(choices)), unit_(std::move(unit)), box_(new QComboBox) {
        adopt(box_);
        for (const auto& [value, text] : choices_) box_->addItem(text);
        connect(box_, &QComboBox::activated, this, [this](int row) {
            if (row < static_cast<int>(choices_.size()))
                Q_EMIT edited(choices_[static_cast<size_t>(row)].first);
        });
    }
    void setValue(const SettingValue& value) override {
        const auto found = std::find_if(choices_.begin(), choices_.end(),
                                        [&](const auto& choice) { return choice.first == value; });
        const QSignalBlocker quiet(box_);
        const int listed = static_cast<int>(choices_.size());
        while (box_->count() > listed) box_->removeItem(listed);
        // What is stored by hand need not be on the list.
        if (found == choices_.end()) box_->addItem(own(value));
        box_->setCurrentIndex(static_cast<int>(found - choices_.begin()));
    }

private:
    QString own(const SettingValue& value) const {
        const auto* text = std::get_if<std::string>(&value);
        return text ? toQt(*text) : QString("%1 %2").arg(number(value)).arg(unit_).trimmed();
    }

    std::vector<std::pair<SettingValue, QString>> choices_;
    QString unit_;
    QComboBox* box_;
};

class NumberEditor final : public SettingEditor {
public:
    NumberEditor(const AnySetting& setting, const QString& unit, QWidget* parent)
        : SettingEditor(parent),
          isWhole_(std::holds_alternative<int64_t>(setting.storedDefault())),
          box_(new QDoubleSpinBox) {
        adopt(box_);
        box_->setMinimumHeight(Theme::rowHeight);
        box_->setDecimals(isWhole_ ? 0 : 1);
        box_->setRange(std::max(setting.accepted().least, -1e9), std::min(setting.accepted().most, 1e9));
        if (!unit.isEmpty()) box_->setSuffix(" " + unit);
        box_->setKeyboardTracking(false); // a half-typed number is no wish
        connect(box_, &QDoubleSpinBox::valueChanged, this, [this](double value) {
            Q_EMIT edited(isWhole_ ? SettingValue(static_cast<int64_t>(value)) : SettingValue(value));
        });
    }
    void setValue(const SettingValue& value) override {
        const QSignalBlocker quiet(box_);
        box_->setValue(number(value));
    }

private:
    bool isWhole_;
    QDoubleSpinBox* box_;
};

/// A slider tells what it was moved to once it rests for a moment: every value on the way would be written to
/// disk.
class ShareEditor final : public SettingEditor {
public:
    ShareEditor(const AnySetting& setting, QWidget* parent)
        : SettingEditor(parent), slider_(new QSlider(Qt::Horizontal)), figure_(new QLabel) {
        auto* both = new QWidget;
        auto* row = new QHBoxLayout(both);
        row->setContentsMargins(0, 0, 0, 0);
        row->addWidget(slider_, 1);
        row->addWidget(figure_);
        figure_->setMinimumWidth(figure_->fontMetrics().horizontalAdvance("100 %"));
        figure_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        adopt(both);
        slider_->installEventFilter(this);
        setFocusProxy(slider_);
        slider_->setRange(static_cast<int>(std::lround(setting.accepted().least * 100)),
                          static_cast<int>(std::lround(setting.accepted().most * 100)));
        slider_->setPageStep(10);
        rest_.setSingleShot(true);
        rest_.setInterval(120);
        connect(slider_, &QSlider::valueChanged, this, [this](int) {
            showFigure();
            rest_.start();
        });
        connect(slider_, &QSlider::sliderReleased, this, [this] { tell(); });
        connect(&rest_, &QTimer::timeout, this, [this] { tell(); });
    }
    void setValue(const SettingValue& value) override {
        if (slider_->isSliderDown() || rest_.isActive()) return;
        const QSignalBlocker quiet(slider_);
        slider_->setValue(static_cast<int>(std::lround(number(value) * 100)));
        showFigure();
    }

private:
    void showFigure() { figure_->setText(QString("%1 %").arg(slider_->value())); }
    void tell() {
        if (!rest_.isActive() && slider_->value() == told_) return;
        rest_.stop();
        told_ = slider_->value();
        Q_EMIT edited(slider_->value() / 100.0);
    }

    QSlider* slider_;
    QLabel* figure_;
    QTimer rest_;
    int told_ = -1;
};

std::vector<std::pair<SettingValue, QString>> choicesOf(const SettingRow& row) {
    std::vector<std::pair<SettingValue, QString>> choices;
    if (row.editing == SettingEditing::page) {
        for (const auto& page : pageTable())
            choices.emplace_back(static_cast<int64_t>(choices.size()), say(page.title));
    }
    for (const auto& choice : row.choices) choices.emplace_back(choice.stored(), say(choice.text));
    return choices;
}

SettingEditor* make(const SettingRow& row, const AnySetting& setting, QWidget* parent) {
    switch (row.editing) {
    case SettingEditing::check: return new CheckEditor(parent);
    case SettingEditing::choice:
    case SettingEditing::page: return new ChoiceEditor(choicesOf(row), say(row.unit), parent);
    case SettingEditing::number: return new NumberEditor(setting, say(row.unit), parent);
    case SettingEditing::share: return new ShareEditor(setting, parent);
    case SettingEditing::modules: return new ListEditor(ListEditor::Content::orderedModules, parent);
    case SettingEditing::moduleChecks: return new ListEditor(ListEditor::Content::modules, parent);
    case SettingEditing::pages: return new ListEditor(ListEditor::Content::pages, parent);
    }
    return nullptr;
}

} // namespace

void SettingEditor::adopt(QWidget* control) {
    auto* whole = new QHBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(control);
    control->setFocusPolicy(Qt::StrongFocus);
    control->installEventFilter(this);
    setFocusProxy(control);
}

bool SettingEditor::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Wheel || static_cast<QWidget*>(watched)->hasFocus()) return false;
    event->ignore();
    return true;
}

SettingEditor* makeSettingEditor(const SettingRow& row, const AnySetting& setting, QWidget* parent) {
    auto* editor = make(row, setting, parent);
    editor->setObjectName(toQt(row.key));
    const QString name = say(row.label), more = say(row.explanation);
    for (auto* control : editor->findChildren<QWidget*>()) {
        if (control->focusPolicy() == Qt::NoFocus) continue;
        control->setAccessibleName(name);
        control->setAccessibleDescription(more);
    }
    return editor;
}

} // namespace quarn::desktop
