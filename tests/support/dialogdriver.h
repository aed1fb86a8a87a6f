#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <deque>
#include <functional>

class QWidget;
class QMessageBox;

namespace hbrc::test {

// Answers the modal dialogs that the code under test opens, in the order the test scripted them.
//
//   DialogDriver driver;
//   driver.expectMessageBox("Checkout Error", QMessageBox::Retry);
//   driver.expect("password", [](QWidget* w) { ... accept it ... });
//   runTheFlow();                 // blocks in exec(); the driver answers from the event loop
//   EXPECT_TRUE(driver.finished()) << driver.failures().join('\n');
//
// Every expectation waits for the next modal widget (QApplication::activeModalWidget) up to its
// timeout. A modal widget that appears while nothing is expected is closed and recorded as a
// failure, so that a test never hangs in a dialog it did not expect; an expectation whose dialog
// never appears is recorded too. A handler that leaves its dialog open gets it closed for it.
class DialogDriver : public QObject
{
    Q_OBJECT
public:
    using Handler = std::function<void(QWidget* dialog)>;

    explicit DialogDriver(QObject* parent = nullptr);

    // Waits for the next modal widget and hands it to handler.
    void expect(const QString& description, Handler handler, int timeoutMs = 5000);
    // Waits for a QMessageBox with this title (and, when given, containing textPart) and presses button.
    void expectMessageBox(const QString& title, int standardButton, const QString& textPart = {}, int timeoutMs = 5000);

    // True when every expectation was met and nothing unexpected appeared.
    bool finished() const { return m_pending.empty() && m_failures.isEmpty(); }
    QStringList failures() const { return m_failures; }
    int answered() const { return m_answered; }
    // Titles of every modal widget the driver saw, in order (expected or not).
    QStringList seenTitles() const { return m_seenTitles; }

    // Spins the event loop until pred holds or timeoutMs passes; returns pred().
    static bool waitUntil(const std::function<bool()>& pred, int timeoutMs = 5000);

private:
    struct Expectation {
        QString description;
        Handler handler;
        int timeoutMs = 5000;
        qint64 startedAt = -1;
    };
    void poll();
    void answer(QWidget* modal);

    QTimer m_timer;
    std::deque<Expectation> m_pending;
    QStringList m_failures;
    QStringList m_seenTitles;
    QPointer<QWidget> m_lastAnswered;
    int m_answered = 0;
};

// Presses the standard button of a message box; records nothing on its own.
void pressMessageBoxButton(QMessageBox* box, int standardButton);

}  // namespace hbrc::test
