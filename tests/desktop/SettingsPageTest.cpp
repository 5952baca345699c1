// The settings page over a settings file: what an editor writes, restores and cannot write.
#include "desktop/WindowFixture.h"
#include "desktop/settings/SettingLine.h"
#include "desktop/widgets/Notice.h"
#include "settings/Support.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSlider>

namespace quarn::testing {
namespace {

struct SettingsPage : ::testing::Test {
    template <class Control>
    Control& control(const char* key) {
        auto* found = page->findChild<QWidget*>(key)->findChild<Control*>();
        EXPECT_NE(found, nullptr) << key;
        return *found;
    }
    /// The way back to the default, or null while there is none.
    QPushButton* restore(const char* key) {
        auto* button = page->findChild<QWidget*>(key)->parent()->findChild<QPushButton*>("link");
        return button->isHidden() ? nullptr : button;
    }
    QString notice() { return page->findChild<desktop::Notice*>()->sentence(); }

    SettingsFolder folder;
    WatchfulStore store{folder};
    Prefs prefs{store};
    WindowFixture fixture{LiveHistory(), sysinfo::SystemRoot(folder.path()), folder.path() / "metrics.sqlite",
                          prefs};
    desktop::Page* page = (fixture.open("settings"), &fixture.page());
};

TEST_F(SettingsPage, EveryEditorWritesWhatItShows) {
    control<QCheckBox>("showExited").click();
    for (const auto& [key, index] : {std::pair{"appTheme", 2}, {"startPage", 3}}) {
        control<QComboBox>(key).setCurrentIndex(index);
        Q_EMIT control<QComboBox>(key).activated(index);
    }
    control<QDoubleSpinBox>("backgroundInterval").setValue(7.5);
    auto& opacity = control<QSlider>("widgetOpacity");
    opacity.setValue(40);
    QTRY_COMPARE(prefs.widgetOpacity.get(), 0.4);
    control<QListWidget>("widgets").item(1)->setCheckState(Qt::Checked);
    control<QListWidget>("sidebarLayout").item(4)->setCheckState(Qt::Unchecked);
    auto& modules = control<QListWidget>("menuBarDetailed");
    modules.item(0)->setCheckState(Qt::Checked);
    modules.item(4)->setCheckState(Qt::Checked);
    modules.setCurrentRow(1); // the second of the two checked ones, which stand first now
    QTest::keyClick(&modules, Qt::Key_Up, Qt::ControlModifier);

    EXPECT_FALSE(prefs.showExited.get());
    EXPECT_EQ(prefs.appTheme.get(), AppTheme::dark);
    EXPECT_EQ(prefs.startPage.get(), 3);
    EXPECT_EQ(prefs.backgroundInterval.get(), 7.5);
    EXPECT_EQ(prefs.widgets.get(), std::vector<std::string>{"memory"});
    EXPECT_EQ(prefs.sidebarLayout.get(), (SidebarLayout{{}, {"cpu"}}));
    EXPECT_EQ(prefs.menuBarDetailed.get(), (std::vector<std::string>{"network", "cpu"}));
    EXPECT_EQ(notice(), "");
}

TEST_F(SettingsPage, AChangedSettingCanBeRestored) {
    EXPECT_EQ(restore("flashChanges"), nullptr);
    control<QCheckBox>("flashChanges").click();
    ASSERT_NE(restore("flashChanges"), nullptr);
    restore("flashChanges")->click();
    EXPECT_TRUE(control<QCheckBox>("flashChanges").isChecked());
    EXPECT_EQ(restore("flashChanges"), nullptr);
    EXPECT_EQ(folder.text().find("flashChanges"), std::string::npos) << "the default may change later";
}

TEST_F(SettingsPage, ChangesByOthersAppear) {
    folder.write("keepExited = 12\nwidgetOpacity = 0.5\nshowExited = false\n");
    page->refresh({}, {});
    EXPECT_EQ(control<QComboBox>("keepExited").currentText(), "12 s") << "none of the offered ones";
    EXPECT_FALSE(control<QComboBox>("keepExited").isEnabled()) << "nothing exited is shown";
    EXPECT_EQ(control<QSlider>("widgetOpacity").value(), 50);
    folder.write("keepExited = 30\n");
    page->refresh({}, {});
    EXPECT_EQ(control<QComboBox>("keepExited").currentText(), "30 seconds");
    EXPECT_EQ(control<QComboBox>("keepExited").count(), 5);
    folder.write("keepExited = \n");
    page->refresh({}, {});
    EXPECT_TRUE(notice().startsWith("The settings in ")) << notice().toStdString();
    EXPECT_EQ(control<QComboBox>("keepExited").currentText(), "30 seconds");
}

TEST_F(SettingsPage, WhatCannotBeStoredIsSaidAndTakenBack) {
    folder.write("flashChanges = false\n");
    page->refresh({}, {});
    // A folder where the lock should be keeps even root from writing.
    std::filesystem::remove(folder.file().string() + ".lock");
    std::filesystem::create_directory(folder.file().string() + ".lock");
    control<QCheckBox>("flashChanges").click();
    control<QListWidget>("widgets").item(1)->setCheckState(Qt::Checked);
    EXPECT_TRUE(notice().startsWith("Cannot write ")) << notice().toStdString();
    EXPECT_TRUE(notice().contains("The stored settings are unchanged.")) << notice().toStdString();
    EXPECT_FALSE(control<QCheckBox>("flashChanges").isChecked());
    EXPECT_EQ(control<QListWidget>("widgets").item(1)->checkState(), Qt::Unchecked);
    EXPECT_EQ(folder.text(), "flashChanges = false\n");
    std::filesystem::remove(folder.file().string() + ".lock");
    control<QCheckBox>("flashChanges").click();
    EXPECT_EQ(notice(), "") << "what works again is no failure";
    EXPECT_TRUE(prefs.flashChanges.get());
}

TEST_F(SettingsPage, TheSidebarKeepsAPage) {
    auto& pages = control<QListWidget>("sidebarLayout");
    for (int i = 0; i < pages.count(); ++i) {
        pages.setCurrentRow(i);
        pages.item(i)->setCheckState(Qt::Unchecked);
    }
    EXPECT_EQ(prefs.sidebarLayout.get().hidden.size(), desktop::pageTable().size() - 1);
    EXPECT_EQ(pages.item(pages.count() - 1)->checkState(), Qt::Checked);
}

TEST_F(SettingsPage, SaysThatThereIsNoTray) {
    int notes = 0; // in no desktop at all
    for (auto* label : page->findChildren<QLabel*>())
        notes += label->isVisible() && label->text().contains("has no tray");
    EXPECT_EQ(notes, 1);
}

TEST_F(SettingsPage, ASearchLeavesWhatMatches) {
    const auto shown = [&] {
        std::vector<std::string> keys;
        for (auto* line : page->findChildren<desktop::SettingLine*>())
            if (!line->isHidden()) keys.emplace_back(line->row().key);
        return keys;
    };
    const size_t all = shown().size();
    page->search("celsius");
    EXPECT_EQ(shown(), std::vector<std::string>{"fahrenheit"});
    page->search("");
    EXPECT_EQ(shown().size(), all);
}

} // namespace
} // namespace quarn::testing
