#include "passwordinput.h"

#include <iostream>
#include <stdexcept>

#include <termios.h>
#include <unistd.h>

#include "commandline.h"

namespace hbrc::hbdepot {

namespace {

std::string lineOfStandardInput()
{
    std::string text;
    std::getline(std::cin, text);
    if (!text.empty() && text.back() == '\r')
        text.pop_back();
    return text;
}

// Restores the terminal's echo however the reading ends.
class EchoOff
{
public:
    EchoOff() : m_changed(::tcgetattr(STDIN_FILENO, &m_saved) == 0)
    {
        if (m_changed) {
            termios quiet = m_saved;
            quiet.c_lflag &= static_cast<tcflag_t>(~ECHO);
            quiet.c_lflag |= ECHONL;
            ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet);
        }
    }
    ~EchoOff()
    {
        if (m_changed)
            ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &m_saved);
    }
    EchoOff(const EchoOff&) = delete;
    EchoOff& operator=(const EchoOff&) = delete;

private:
    termios m_saved{};
    bool m_changed = false;
};

}  // namespace

std::string passwordFor(const CommandLine& line, const std::string& prompt, std::ostream& prompts)
{
    if (line.passwordFromStandardInput())
        return lineOfStandardInput();
    if (!line.password().empty())
        return line.password();
    if (!::isatty(STDIN_FILENO))
        return {};
    prompts << prompt << std::flush;
    const EchoOff echoOff;
    return lineOfStandardInput();
}

bool passwordOffered(const CommandLine& line)
{
    return line.passwordFromStandardInput() || !line.password().empty() || ::isatty(STDIN_FILENO);
}

}  // namespace hbrc::hbdepot
