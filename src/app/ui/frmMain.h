#pragma once

#include "DefaultData.h"
#include "SettingsKeys.h"
#include "ShellFunction.h"

#include <QColor>
#include <QMainWindow>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <array>
#include <functional>
#include <memory>
#include <vector>

class QAction;
class QFrame;
class QLabel;
class QLineEdit;
class QMenu;
class QProgressBar;
class QPushButton;
class QTabBar;
class QTimer;
class QWidget;
class GuiJobUi;
class HelpWindow;
class InstructionForm;
class StepRing;
class frmInputBox;
struct JobState;

// Values that Load reads from the settings store into the window's module variables. Function
// subsystems read them when they fill their frames; the store stays the place they write to.
struct StartupValues
{
    QString BackupDirName, sml_resize, lrg_resize, Blog_resize;
    QString PhotoIntructionView, BackupInstructionView, BlogIntructionView, PortalIntructionView,
        SendFileIntructionView, FTPControlInstructionView;
    bool AlernateLR = true, PromptForTitle = false, PromptForDescription = false;
    QString BlogDirName, LoadSpeed;
    bool SpellCheck = false, IsNTFamily = true;
    ColourAndFontSettings ColourAndFont;
    QString ChoosenUploadPath, ChoosenCopyPath;
    QString LogoTxt, SULogoH, LogoPointerWidth;
    QString SUBackgroundColor, SUTitleColor, SUTextColor, SUPageFont;
};

// The application shell: the start screen with the six functions, the six work frames, the
// shared progress frame, the step rings, the menus and the four timers. It knows no function:
// each joins it through addFunction (its frame, instruction page, rings, help and menu entries)
// and through the few services below. Construction builds the widgets only; Load() runs the
// start-up sequence (it may show dialogs and run the event loop), so that the functions join
// between the two. A function that has not joined has its button, tab and menu entries disabled.
class frmMain final : public QMainWindow
{
    Q_OBJECT
public:
    static constexpr int FunctionCount = 6;
    static constexpr int RingCount = 27;

    // state is the job-wide state that the window's CancelButton and prompts work on; it must
    // outlive the window.
    explicit frmMain(JobState &state, QWidget *parent = nullptr);
    ~frmMain() override;

    JobState &state() const { return m_state; }

    // A function joins the window: its content goes into TabFrame(function.index), and from
    // then on the window opens it, shows its instruction page, raises its steps, asks it for
    // its help page and calls its load and clean-up parts. One function per index.
    void addFunction(ShellFunction function);
    bool hasFunction(int index) const;
    // The functions' names as the start screen, the tabs and the File menu show them.
    static QString FunctionName(int index);

    // Start-up: settings, folder tree, default data, first-run questions, clean-up, hooks.
    void Load();
    const StartupValues &startup() const { return m_startup; }
    // What the restoring of the default data did during Load.
    const CopyFilesReport &copyFilesReport() const { return m_copyFilesReport; }

    // The work frame of function index (0-5); each holds an empty QVBoxLayout to fill.
    QFrame *TabFrame(int index) const;
    QTabBar *TabStrip1() const { return m_tabStrip; }
    QFrame *StartFrame() const { return m_startFrame; }

    // Step rings. placeRing attaches ring index (0-26) to a control: the ring is drawn around it
    // and follows it; shapeEvent decides whether and in which colour it shows.
    void placeRing(int index, QWidget *target);
    void shapeEvent(int step);
    StepRing *ring(int index) const;
    static const QColor RingGreen;
    static const QColor RingYellow;

    // Function selection, the same for FunctionSelectButton_i and TabMenu_i.
    void FunctionSelectButton_Click(int index);
    void TabStrip1_Click();
    void ReturnToStartButton_Click();
    void DoCleanup();

    // Instruction forms: unloads all six; shows one (whatever its setting) and returns it, or
    // nullptr for a function that has not joined.
    void unloadInstructionForms();
    InstructionForm *showInstructionForm(int index);
    InstructionForm *instructionForm(int index) const;

    // Help: the context number of what is on screen, and the help window opened at it.
    int helpContext() const;
    void HelpButton_Click();
    void showHelpTopic(int context);
    HelpWindow *helpWindow() const { return m_help; }

    // Shared progress frame of a running job (Status_text, Stepof, ProgressBar1, CancelButton).
    QFrame *ProgressFrame() const { return m_progressFrame; }
    void showProgressFrame(bool show);
    QLabel *Status_text() const { return m_statusText; }
    QLabel *Stepof() const { return m_stepOf; }
    QProgressBar *ProgressBar1() const { return m_progressBar; }

    // ProgressBar1 follows the block transfers of the window's FTP session (a cFTP): hidden
    // but for a block download, which shows it with its range and moves it. It serves as the
    // bar of the session's FileTransferProgress as well (maximum the total, value the current
    // count while below it), which is seen only while a download shows it.
    template <typename Session> void followBlockTransfers(Session &session)
    {
        connect(&session, &Session::DownloadBarShown, this, &frmMain::showDownloadBar);
        connect(&session, &Session::DownloadBarValue, this, &frmMain::setDownloadBarValue);
        connect(&session, &Session::DownloadBarHidden, this, &frmMain::hideDownloadBar);
        connect(&session, &Session::FileTransferProgress, this,
                &frmMain::mFTP_FileTransferProgress);
    }
    void showDownloadBar(qint64 maximum);
    void setDownloadBarValue(qint64 value);
    void hideDownloadBar();
    void mFTP_FileTransferProgress(qint64 currentBytes, qint64 totalBytes);

    // Fields of the FTP Control & Settings tab that Load fills. They belong to frmMain but have
    // no place until the settings tab adds them to its layout (adding them shows them).
    QLineEdit *txtServer() const { return m_txtServer; }
    QLineEdit *txtWebSite() const { return m_txtWebSite; }
    QLineEdit *txtUser() const { return m_txtUser; }
    QLineEdit *txtPassword() const { return m_txtPassword; }
    QLineEdit *txtEmailID() const { return m_txtEmailID; }
    QLineEdit *txtDefaultAuthor() const { return m_txtDefaultAuthor; }
    QLineEdit *WebRoot() const { return m_webRoot; }
    QLineEdit *FTPRoot() const { return m_ftpRoot; }
    QLineEdit *ClientRoot() const { return m_clientRoot; }
    QLineEdit *LoadSpeed() const { return m_loadSpeed; }
    QLabel *UploadPath() const { return m_uploadPath; }

    // Menu entries that jobs and other subsystems look at or extend.
    QAction *RunWithoutMenu() const { return m_runWithoutMenu; }
    QAction *HighLightSteps() const { return m_highLightSteps; }
    QAction *SpellCheckOn() const { return m_spellCheckOn; }
    QAction *CheckSpellingMenu() const { return m_checkSpellingMenu; }
    QAction *CheckSpellingAllMenu() const { return m_checkSpellingAllMenu; }
    QAction *XPorBetter() const { return m_xpOrBetter; }
    QMenu *OptionsMenu() const { return m_optionsMenu; }

    // The job seam with the real forms, and the prompt it uses.
    GuiJobUi &jobUi() const { return *m_jobUi; }
    frmInputBox *inputBox();

    // Options > Spell Check On: off at once; on after the question about the dictionary.
    void SpellCheckOn_Click();

    // Timers: the removable drive (Timer1), the tick counter (Timer4) and Wait on it.
    QString RemovableDrive() const { return m_removableDrive; }
    QString Text2() const;
    int TickCount() const { return m_tickCount; }
    void Wait(double seconds);
    void refreshDrives();
    void refreshUploadPath();
    // Timer3 follows the FTP tab's connection: its Connect starts it, its Disconnect stops it,
    // and UploadPath then keeps its last text.
    void setUploadPathTimerRunning(bool running);
    bool uploadPathTimerRunning() const;

    // The About line: system name, " Version ", kernel version.
    static QString SystemVersionLine();

    // Services that a function offers the whole window. Each is optional.
    // Timer3: the directory the FTP session stands in (no network call).
    void setFtpDirectoryProvider(std::function<QString()> provider);
    // Window close answered Yes: close the FTP connection.
    void setCloseHook(std::function<void()> hook);
    // The Configuration page: shown on the first run and by SetupPrompt; returns when answered.
    void setSetupPage(std::function<void()> page);
    // The spelling check of a text; while unset, the prompt has no spell-check button and
    // CheckSpellingMenu and CheckSpellingAllMenu stay disabled whatever SpellCheck says.
    void setSpellChecker(std::function<QString(const QString &)> checker);
    const std::function<QString(const QString &)> &spellChecker() const { return m_spellChecker; }
    // The picture editor: opens a picture file ("" for a new picture) in its window, and with
    // wait returns only when the user has closed that window (the event loop runs meanwhile).
    // Unset, there is no picture editor and editPicture returns false at once.
    void setPictureEditor(std::function<void(const QString &path, bool wait)> editor);
    bool hasPictureEditor() const { return static_cast<bool>(m_pictureEditor); }
    bool editPicture(const QString &path, bool wait = false);
    // An entry of a part of the program that is not one of the six functions (a tool).
    void addMenuEntry(MenuEntry entry);

    // What follows programEnding: every window is hidden, the event loops are told to end and,
    // at the next turn of whichever loop still runs (a job may be waiting inside one),
    // endingAction is called. By default it ends the process at once, so that a job can't run
    // on unseen to its end; settings are written as they change, so nothing is lost.
    static void EndProgram(std::function<void()> endingAction = {});

signals:
    // The user chose to end the program (ExitMenu or the window's close, answered Yes).
    void programEnding();

protected:
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void PositionThings();
    QWidget *buildStartScreen();
    QWidget *buildProgressFrame();
    void buildMenus();
    void buildSettingsFields();
    void Timer2_Timer();
    void askExit();
    bool exitConfirmed();
    QMenu *menuTitled(const QString &title);
    void PromptForSetup();
    void askSpellingQuestion();
    void updateSpellingEntries();
    void readStartupSettings();
    void showTabFrame(int index);
    void openFunction(int index, bool byTab);

    JobState &m_state;
    StartupValues m_startup;
    CopyFilesReport m_copyFilesReport;
    QFrame *m_startFrame = nullptr;
    QTabBar *m_tabStrip = nullptr;
    bool m_selectingTab = false;
    QWidget *m_workArea = nullptr;
    std::array<QFrame *, FunctionCount> m_tabFrames{};
    std::array<QPushButton *, FunctionCount> m_functionButtons{};
    std::array<StepRing *, RingCount> m_rings{};
    std::array<QPointer<InstructionForm>, FunctionCount> m_instructions{};
    std::array<ShellFunction, FunctionCount> m_functions{};
    std::array<QAction *, FunctionCount> m_tabMenus{};
    std::array<QAction *, FunctionCount> m_instrMenus{};
    QPushButton *m_returnButton = nullptr;

    QFrame *m_progressFrame = nullptr;
    QLabel *m_statusText = nullptr;
    QLabel *m_stepOf = nullptr;
    QProgressBar *m_progressBar = nullptr;
    qint64 m_barUnit = 1; // bytes to a step of ProgressBar1, so that large files fit its range
    QPushButton *m_cancelButton = nullptr;

    QWidget *m_fieldHolder = nullptr;
    QLineEdit *m_txtServer = nullptr, *m_txtWebSite = nullptr, *m_txtUser = nullptr,
              *m_txtPassword = nullptr, *m_txtEmailID = nullptr, *m_txtDefaultAuthor = nullptr,
              *m_webRoot = nullptr, *m_ftpRoot = nullptr, *m_clientRoot = nullptr,
              *m_loadSpeed = nullptr;
    QLabel *m_uploadPath = nullptr;
    QLabel *m_text2 = nullptr;

    QMenu *m_optionsMenu = nullptr;
    QMenu *m_helpMenu = nullptr;
    QAction *m_runWithoutMenu = nullptr, *m_highLightSteps = nullptr, *m_setupPrompt = nullptr,
            *m_spellCheckOn = nullptr, *m_checkSpellingMenu = nullptr,
            *m_checkSpellingAllMenu = nullptr, *m_xpOrBetter = nullptr;

    // Timer2's animation: two pictures on a track, direction "R" or "L".
    QWidget *m_track = nullptr;
    QLabel *m_image7[2] = {nullptr, nullptr};
    QString m_direction = QStringLiteral("R");

    QTimer *m_timer1 = nullptr, *m_timer2 = nullptr, *m_timer3 = nullptr, *m_timer4 = nullptr;
    int m_tickCount = 0;
    QString m_removableDrive;
    bool m_driveScanRunning = false;

    std::unique_ptr<GuiJobUi> m_jobUi;
    QPointer<frmInputBox> m_inputBox;
    HelpWindow *m_help = nullptr;

    std::function<QString()> m_ftpDirectory;
    std::function<void()> m_closeHook;
    std::function<void()> m_setupPage;
    std::function<QString(const QString &)> m_spellChecker;
    std::function<void(const QString &, bool)> m_pictureEditor;
};
