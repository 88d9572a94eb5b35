// The prompt as a user at a terminal meets it: typed keys in, screen out.
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>

#include "support/host_fixture.h"

namespace mirk::test {
namespace {

/// `mirk shell` on a pseudo terminal.
class Terminal
{
public:
    explicit Terminal(const std::string& historyFile)
    {
        const std::string binary = (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "mirk").string();
        child_ = forkpty(&terminal_, nullptr, nullptr, nullptr);
        if (child_ == 0)
        {
            setenv("MIRK_HISTORY", historyFile.c_str(), 1);
            setenv("TERM", "dumb", 1);
            execl(binary.c_str(), "mirk", "shell", nullptr);
            _exit(127);
        }
        waitFor("mel> ");
    }
    ~Terminal()
    {
        if (child_ > 0 && waitpid(child_, nullptr, WNOHANG) == 0)
        {
            kill(child_, SIGKILL);
            waitpid(child_, nullptr, 0);
        }
        close(terminal_);
    }

    /// Types keys, and gives what the screen shows up to `shown`; all that came if that never comes.
    std::string type(const std::string& keys, const std::string& shown)
    {
        EXPECT_EQ(write(terminal_, keys.data(), keys.size()), ssize_t(keys.size()));
        return waitFor(shown);
    }
    int status()
    {
        int status = 0;
        waitpid(child_, &status, 0);
        child_ = 0;
        return status;
    }

private:
    std::string waitFor(const std::string& shown)
    {
        std::string out;
        char        block[1024];
        pollfd      ready{terminal_, POLLIN, 0};
        while (out.find(shown) == std::string::npos && poll(&ready, 1, 30000) > 0)
        {
            const ssize_t n = read(terminal_, block, sizeof block);
            if (n <= 0)
                break;
            out.append(block, size_t(n));
        }
        EXPECT_NE(out.find(shown), std::string::npos) << "'" << shown << "' did not come, but:\n" << out;
        return out;
    }

    int   terminal_ = -1;
    pid_t child_ = -1;
};

using Shell = Host;

TEST_F(Shell, BothLanguagesAndErrors)
{
    Terminal t(file("history"));
    t.type("int $shellA = 3;\r", "mel> ");
    t.type("$shellA * 2;\r", "// Result: 6 //");
    t.type("melNoSuch;\r", "Cannot find procedure \"melNoSuch\"");
    t.type("{ /* open\r", "...  ");
    t.type("*/ print(\"br{ce\\n\");\r", "...  ");
    t.type("}\r", "br{ce\r\n");
    t.type("evalDeferred \"print \\\"later\\\\n\\\"\";\r", "later\r\n");
    t.type("python\r", ">>> ");
    t.type("[n * 2 for n in (1, 2)]\r", "[2, 4]");
    t.type("for n in (5, 6):\r", "...  ");
    t.type("    print(n * 11)\r", "...  ");
    t.type("\r", "66\r\n");
    t.type("1 / 0\r", "ZeroDivisionError");
    t.type("mel\r", "mel> ");
    t.type("quit\r", "\n");
    EXPECT_EQ(t.status(), 0);
}

TEST_F(Shell, CompletesAndRemembers)
{
    {
        Terminal t(file("history"));
        t.type("createNode transform -n shellNode;\r", "// Result: shellNode //");
        t.type("whatIs polyEvalua\t;\r", "// Result: Command //");
        t.type("getAttr shellNo\t.visibi\t;\r", "// Result: 1 //");
        t.type("python\r", ">>> ");
        t.type("import maya.cmds as mc\r", ">>> ");
        t.type("mc.objExi\t('shellNo\t')\r", "True");
        t.type("quit\r", "\n");
        t.status();
    }
    EXPECT_NE(read(file("history")).find("createNode transform -n shellNode;"), std::string::npos);
    Terminal again(file("history"));
    again.type("\x10\x10\x10\x10\x10\x10\x10\r", "// Result: shellNode //");   // seven lines up
}

}  // namespace
}  // namespace mirk::test
