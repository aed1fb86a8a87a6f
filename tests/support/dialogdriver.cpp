#include "dialogdriver.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDateTime>
#include <QDialog>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QThread>

namespace hbrc::test {

namespace {

void closeModal(QWidget* modal)
{
    if (auto* dialog = qobject_cast<QDialog*>(modal))
        dialog->reject();
    else
        modal->close();
}

}  // namespace

DialogDriver::DialogDriver(QObject* parent)
    : QObject(parent)
{
    connect(&m_timer, &QTimer::timeout, this, &DialogDriver::poll);
    m_timer.start(10);
}

void DialogDriver::expect(const QString& description, Handler handler, int timeoutMs)
{
    m_pending.push_back({description, std::move(handler), timeoutMs, -1});
}

void DialogDriver::expectMessageBox(const QString& title, int standardButton, const QString& textPart, int timeoutMs)
{
    expect(
        QStringLiteral("message box '%1'").arg(title),
        [this, title, standardButton, textPart](QWidget* w) {
            auto* box = qobject_cast<QMessageBox*>(w);
            if (!box) {
                m_failures << QStringLiteral("expected message box '%1', got %2 '%3'")
                                  .arg(title, QString::fromLatin1(w->metaObject()->className()), w->windowTitle());
                return;
            }
            if (box->windowTitle() != title)
                m_failures << QStringLiteral("expected message box title '%1', got '%2'").arg(title, box->windowTitle());
            if (!textPart.isEmpty() && !box->text().contains(textPart))
                m_failures << QStringLiteral("message box '%1' text '%2' lacks '%3'").arg(title, box->text(), textPart);
            if (!box->button(static_cast<QMessageBox::StandardButton>(standardButton)))
                m_failures << QStringLiteral("message box '%1' has no button %2").arg(title).arg(standardButton);
            pressMessageBoxButton(box, standardButton);
        },
        timeoutMs);
}

void DialogDriver::poll()
{
    QWidget* modal = QApplication::activeModalWidget();
    if (modal && modal->isVisible() && modal != m_lastAnswered) {
        answer(modal);
        return;
    }
    if (m_pending.empty())
        return;
    Expectation& next = m_pending.front();
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    if (next.startedAt < 0) {
        next.startedAt = now;
    } else if (now - next.startedAt > next.timeoutMs) {
        m_failures << QStringLiteral("timed out waiting for %1").arg(next.description);
        m_pending.pop_front();
    }
}

void DialogDriver::answer(QWidget* modal)
{
    m_seenTitles << modal->windowTitle();
    m_lastAnswered = modal;
    QPointer<QWidget> guard(modal);
    if (m_pending.empty()) {
        m_failures << QStringLiteral("unexpected modal dialog '%1' (%2)")
                          .arg(modal->windowTitle(), QString::fromLatin1(modal->metaObject()->className()));
        closeModal(modal);
    } else {
        Expectation current = std::move(m_pending.front());
        m_pending.pop_front();
        current.handler(modal);
        ++m_answered;
        if (guard && guard->isVisible() && QApplication::activeModalWidget() == guard) {
            m_failures << QStringLiteral("handler for %1 left the dialog open").arg(current.description);
            closeModal(guard);
        }
    }
    // A dialog shown again later (the same object re-executed) must be answered again.
    m_lastAnswered = nullptr;
}

bool DialogDriver::waitUntil(const std::function<bool()>& pred, int timeoutMs)
{
    QElapsedTimer timer;
    timer.start();
    while (!pred() && timer.elapsed() < timeoutMs) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(1);
    }
    return pred();
}

void pressMessageBoxButton(QMessageBox* box, int standardButton)
{
    if (QAbstractButton* button = box->button(static_cast<QMessageBox::StandardButton>(standardButton)))
        button->click();
    else
        box->reject();
}

}  // namespace hbrc::test
