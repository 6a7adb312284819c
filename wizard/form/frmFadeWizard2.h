// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <QMainWindow>
#include <QStringList>
#include <QUrl>

#include "wizard/EffectTable.h"
#include "wizard/RunView.h"
#include "wizard/Session.h"

class QAbstractButton;
class QCheckBox;
class QLineEdit;
class QTimer;

namespace Ui {
class frmFadeWizard2;
}

namespace effects {
class Editor;
}

namespace widgets {
class CommonDialog;
}

namespace wizard {

class MixPreview;
class RunBar;

/// The cross-fade wizard's window: it turns a playlist into new files in a target folder. Its
/// controls are those of frmFadeWizard2.ui and one check box for each row of the effect table; it
/// holds the settings and shows the session's lists, and the pass does the work. Window thread.
///
/// Created for one visit: when it is closed, a run in it ends after the file in hand, and then the
/// window deletes itself.
class frmFadeWizard2 : public QMainWindow, private RunView {
    Q_OBJECT
  public:
    /// The engine that does the work becomes the window's own.
    explicit frmFadeWizard2(std::unique_ptr<effects::Editor> editor, QWidget* parent = nullptr);
    ~frmFadeWizard2() override;

    /// Puts the playlist into lstFiles, in the place of what was handed over before. A run that is
    /// under way keeps its list.
    void handOver(const QStringList& playlist);
    int fileCount() const;

    /// Shows the window in front of the others.
    void bringUp();

    /// What has been set so far.
    const Settings& settings() const { return session_.settings; }

    /// True from the moment it was closed.
    bool isClosing() const { return closing_; }

    /// Closes every window of the program, passing over what fails, and ends the program as soon as
    /// the call in hand has returned.
    static void unloadallforms();

    /// How a web page is opened: the system's browser unless somebody else is put in its place.
    std::function<void(const QUrl&)> openPage;

  protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    // frmFadeWizard2.cpp
    void Form_Load();
    void showLists();
    void offerFormats();
    void Form_Activate();
    void Form_Unload();
    void buildEffectChecks();
    void connectControls();
    void connectFileField(QAbstractButton* select, QAbstractButton* clear, QLineEdit* field);
    void followDeactivation();

    // frmFadeWizard2_settings.cpp
    void Check_Click(const EffectRow& row, bool ticked);
    void hideFrontLabel(const EffectRow& row);
    void offerValues(const EffectRow& row);
    void showValues(bool visible);
    void Button10_Click();
    void Combo1_Click();
    void Button38_Click();
    void Button1_Click();
    void Button2_Click();
    void Button3_Click();
    void selectFile(QLineEdit* box);
    void Button13_Click();
    void Button14_Click();
    void openSupportPage();
    void Timer1_Timer();

    // frmFadeWizard2_run.cpp
    void Button7_Click();
    void run();
    void runEnded();
    void Button6_Click();
    void AudioEditor1_Progress(int percent);
    void updatePreview();

    Options options() const override;
    void selectFile(int index) override;
    void showResults() override;
    void selectResult(int index) override;
    void stepFailed(const QString& sentence) override;
    void burn(const QStringList& results) override;

    bool ticked(int checkBox) const;

    std::unique_ptr<Ui::frmFadeWizard2> ui_;
    Session session_;
    effects::Editor* AudioEditor1;
    widgets::CommonDialog* CommonDialog1;
    QTimer* Timer1;
    MixPreview* preview_;
    std::unique_ptr<RunBar> bar_;
    std::vector<QCheckBox*> effectChecks_;  ///< in the order of the effect table
    bool running_ = false;
    bool closing_ = false;
    bool boxOfOurOwn_ = false;  ///< activity went to a box of this window, not to another window
};

}  // namespace wizard
