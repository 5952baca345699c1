#include "desktop/settings/SettingLine.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "ui/settings/Pref.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>

namespace quarn::desktop {

namespace {

constexpr int editorWidth = 232;

/// What the store says, as a sentence of its own.
QString sentence(const SettingsError& error) {
    QString text = toQt(error.what());
    if (!text.isEmpty()) text[0] = text[0].toUpper();
    return text.endsWith('.') ? text : text + ".";
}

} // namespace

SettingLine::SettingLine(const SettingRow& row, AnySetting& setting, QWidget* parent)
    : QWidget(parent),
      row_(row),
      setting_(setting),
      editor_(makeSettingEditor(row, setting, this)),
      restore_(new QPushButton(say("Restore default"))) {
    auto* label = new QLabel(say(row.label));
    auto* explanation = new QLabel(say(row.explanation));
    explanation->setFont(Theme::captionFont());
    explanation->setProperty("dim", true);
    explanation->setWordWrap(true);
    for (auto* text : {label, explanation}) text->setTextFormat(Qt::PlainText);
    restore_->setObjectName("link");
    restore_->setFont(Theme::captionFont());
    restore_->setCursor(Qt::PointingHandCursor);
    restore_->setAccessibleName(say("Restore default") + ": " + say(row.label));
    auto policy = restore_->sizePolicy();
    policy.setRetainSizeWhenHidden(true); // the line keeps its height
    restore_->setSizePolicy(policy);

    auto* top = new QHBoxLayout;
    top->setSpacing(Theme::gap);
    top->addWidget(label);
    top->addWidget(restore_);
    top->addStretch();
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addLayout(top);
    texts->addWidget(explanation);
    auto* whole = new QHBoxLayout(this);
    whole->setContentsMargins(0, 4, 0, 4);
    whole->setSpacing(2 * Theme::gap);
    whole->addLayout(texts, 1);
    if (row.editing == SettingEditing::check) {
        whole->addWidget(editor_, 0, Qt::AlignRight | Qt::AlignVCenter);
    } else {
        editor_->setFixedWidth(editorWidth);
        whole->addWidget(editor_, 0, Qt::AlignTop);
    }
    if (row.editing != SettingEditing::check) texts->addStretch();

    connect(editor_, &SettingEditor::edited, this,
            [this](const SettingValue& value) { change([&] { setting_.store(value); }); });
    connect(restore_, &QPushButton::clicked, this, [this] { change([this] { setting_.reset(); }); });
    load();
}

void SettingLine::load() {
    editor_->setValue(setting_.storedValue());
    if (restore_->isHidden() == isChanged()) restore_->setVisible(isChanged());
}

bool SettingLine::isChanged() const { return setting_.storedValue() != setting_.storedDefault(); }

void SettingLine::change(const std::function<void()>& change) {
    try {
        change();
    } catch (const SettingsError& error) {
        load();
        Q_EMIT failed(sentence(error));
        return;
    }
    load();
    Q_EMIT stored();
}

void SettingLine::mouseReleaseEvent(QMouseEvent* event) {
    QWidget::mouseReleaseEvent(event);
    // A click on the words of a check box means the box.
    if (auto* box = editor_->findChild<QCheckBox*>(); box && isEnabled() && rect().contains(event->pos()))
        box->toggle();
}

} // namespace quarn::desktop
