#include "passwordinput.h"

#include <cerrno>
#include <csignal>
#include <iostream>
#include <stdexcept>

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include "commandline.h"

namespace hbrc::hbdepot {

namespace {

// How long a prompt waits for its answer before the command gives up.
constexpr int kAnswerTimeoutMs = 5 * 60 * 1000;

std::string lineOfStandardInput()
{
    std::string text;
    std::getline(std::cin, text);
    if (!text.empty() && text.back() == '\r')
        text.pop_back();
    return text;
}

// The signals that end hbdepot while it waits for an answer: they give the terminal its echo back.
constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

// The terminal's settings while echo is off, for the signal handler that gives them back.
termios g_savedTerminal{};
volatile std::sig_atomic_t g_echoIsOff = 0;

extern "C" void restoreEchoAndDie(int signalNumber)
{
    if (g_echoIsOff)
        ::tcsetattr(STDIN_FILENO, TCSANOW, &g_savedTerminal);
    std::signal(signalNumber, SIG_DFL);
    std::raise(signalNumber);
}

// Echo off from before the prompt is printed until the answer is read, also when the user
// interrupts. TCSANOW keeps what was typed ahead: an answer sent at once is read, not dropped.
class EchoOff
{
public:
    EchoOff()
    {
        if (::tcgetattr(STDIN_FILENO, &g_savedTerminal) != 0)
            return;
        termios quiet = g_savedTerminal;
        quiet.c_lflag &= static_cast<tcflag_t>(~ECHO);
        quiet.c_lflag |= ECHONL;
        g_echoIsOff = 1;
        for (int signalNumber : kEndingSignals)
            std::signal(signalNumber, restoreEchoAndDie);
        ::tcsetattr(STDIN_FILENO, TCSANOW, &quiet);
    }
    ~EchoOff()
    {
        if (g_echoIsOff)
            ::tcsetattr(STDIN_FILENO, TCSANOW, &g_savedTerminal);
        g_echoIsOff = 0;
        for (int signalNumber : kEndingSignals)
            std::signal(signalNumber, SIG_DFL);
    }
    EchoOff(const EchoOff&) = delete;
    EchoOff& operator=(const EchoOff&) = delete;
};

// One line from the terminal, read byte by byte so that nothing after it is taken from the
// terminal; the end of input ends it too. Throws when no answer comes in time.
std::string answerFromTerminal()
{
    std::string text;
    for (;;) {
        pollfd ready{STDIN_FILENO, POLLIN, 0};
        const int waited = ::poll(&ready, 1, kAnswerTimeoutMs);
        if (waited < 0 && errno == EINTR)
            continue;
        if (waited == 0)
            throw std::runtime_error("no password was typed within 5 minutes; nothing was done");
        char c = 0;
        const ssize_t got = waited < 0 ? -1 : ::read(STDIN_FILENO, &c, 1);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0 || c == '\n' || c == '\r')
            return text;
        text += c;
    }
}

std::string ask(const std::string& prompt, std::ostream& prompts)
{
    const EchoOff echoOff;
    prompts << prompt << std::flush;
    return answerFromTerminal();
}

}  // namespace

std::string passwordFor(const CommandLine& line, const std::string& prompt, std::ostream& prompts)
{
    if (line.passwordFromStandardInput())
        return lineOfStandardInput();
    if (!line.password().empty())
        return line.password();
    if (!::isatty(STDIN_FILENO))
        return {};
    return ask(prompt, prompts);
}

std::string newPasswordFor(const CommandLine& line, const std::string& name, std::ostream& prompts)
{
    if (line.passwordFromStandardInput())
        return lineOfStandardInput();
    if (!::isatty(STDIN_FILENO))
        throw std::invalid_argument("give the new password on a terminal or with --password-stdin");
    const std::string password = ask("New password for " + name + " (empty: none): ", prompts);
    if (ask("Repeat the new password: ", prompts) != password)
        throw std::runtime_error("the two passwords differ; nothing was changed");
    return password;
}

void warnAboutVisiblePassword(std::ostream& err, const char* how)
{
    err << "hbdepot: warning: " << how
        << " is visible to every user of this machine; use the prompt, --password-stdin or HBDEPOT_PASSWORD\n";
}

bool passwordOffered(const CommandLine& line)
{
    return line.passwordFromStandardInput() || !line.password().empty() || ::isatty(STDIN_FILENO);
}

}  // namespace hbrc::hbdepot
