#include "desktop/WindowFixture.h"

#include "desktop/Theme.h"

#include <QPushButton>
#include <QTemporaryDir>

namespace quarn::testing {

void answer(QMessageBox& question, QMessageBox::ButtonRole role) {
    for (auto* button : question.buttons())
        if (question.buttonRole(button) == role) QTest::mouseClick(button, Qt::LeftButton);
}

int withApplication(int argc, char** argv, const std::function<int()>& run) {
    QTemporaryDir settings;
    qputenv("XDG_CONFIG_HOME", settings.path().toUtf8());
    qputenv("XDG_DATA_HOME", settings.path().toUtf8());
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    desktop::Theme::install(application, desktop::Theme::Choice::light);
    return run();
}

} // namespace quarn::testing
