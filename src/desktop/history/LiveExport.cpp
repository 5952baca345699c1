#include "desktop/history/LiveExport.h"

#include "desktop/Background.h"
#include "desktop/Text.h"
#include "history/LiveRecord.h"

#include <QFileDialog>
#include <QLabel>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>
#include <system_error>

namespace quarn::desktop {

namespace {

QLabel* paragraph(const QString& text = {}) {
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

QString path(const std::filesystem::path& file) { return toQt(file.string()); }

} // namespace

LiveExport::LiveExport(LiveRecord& live, QWidget* parent)
    : Card(say("Measurements as a file"), parent),
      live_(live),
      state_(paragraph()),
      save_(new QPushButton(say("Save as CSV …"))),
      record_(new QPushButton) {
    content().addWidget(
        paragraph(say("One line for each measurement, for spreadsheets and scripts: save those of "
                      "the last half hour, or record every new one.")));
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(save_);
    buttons->addWidget(record_);
    buttons->addStretch(1);
    content().addLayout(buttons);
    content().addWidget(state_);
    content().addStretch(1);
    connect(save_, &QPushButton::clicked, this, [this] {
        askForFile(say("Save the measurements of the last half hour"), HistoryExport::exportName,
                   &LiveExport::save);
    });
    connect(record_, &QPushButton::clicked, this, [this] {
        if (live_.recorder().isRecording()) return stop();
        askForFile(say("Record measurements"), HistoryExport::recordingName, &LiveExport::start);
    });
    refresh();
}

void LiveExport::refresh() {
    const bool isRecording = live_.recorder().isRecording();
    const QString label = isRecording ? say("Stop recording") : say("Record …");
    if (record_->text() != label) record_->setText(label);
    const QString text = isRecording ? recordingText() : said_;
    if (state_->text() != text) state_->setText(text);
    if (state_->isHidden() != text.isEmpty()) state_->setVisible(!text.isEmpty());
}

QString LiveExport::state() const { return state_->text(); }

QString LiveExport::recordingText() const {
    const auto state = live_.recorder().state();
    QString text = say("Recording into %1: %2 measurements.").arg(path(state.url)).arg(state.written);
    if (state.lost > 0)
        text += " " + say("%1 could not be written: %2")
                          .arg(state.lost)
                          .arg(toQt(state.lastError.value_or(std::string())));
    return text;
}

void LiveExport::askForFile(const QString& title, std::string_view name, Then then) {
    auto* dialog = new QFileDialog(
        this, title, QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation), "CSV (*.csv)");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix("csv");
    dialog->selectFile(toQt(name));
    connect(dialog, &QFileDialog::fileSelected, this,
            [this, then](const QString& file) { (this->*then)(file.toStdString()); });
    dialog->open();
}

/// Does something with files, then shows what it says; a failure says itself.
void LiveExport::run(std::function<QString()> work) {
    save_->setEnabled(false);
    record_->setEnabled(false);
    inBackground(
        queue_, this,
        [work = std::move(work)] {
            try {
                return work();
            } catch (const std::exception& error) {
                return say("Could not save the file: %1").arg(toQt(error.what()));
            }
        },
        [this](const QString& said) {
            said_ = said;
            save_->setEnabled(true);
            record_->setEnabled(true);
            refresh();
        });
}

void LiveExport::save(const std::filesystem::path& file) {
    run([&live = live_, file] {
        const auto samples = live.samples();
        HistoryExport::writeCSV(file, samples);
        return say("%1 measurements saved. File: %2").arg(samples.size()).arg(path(file));
    });
}

void LiveExport::start(const std::filesystem::path& file) {
    run([&live = live_, file] {
        live.recorder().startRecording(file);
        return QString();
    });
}

void LiveExport::stop() {
    run([&live = live_] {
        live.recorder().stopRecording();
        const auto state = live.recorder().state();
        QString said = say("Recording finished. File: %1").arg(path(state.url));
        if (state.lost > 0)
            said += "\n" + say("%1 measurements could not be written: %2")
                               .arg(state.lost)
                               .arg(toQt(state.lastError.value_or(std::string())));
        return said;
    });
}

} // namespace quarn::desktop
