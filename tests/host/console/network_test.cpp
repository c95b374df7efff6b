// Insert from URL over the network, against a server of its own.
#include "tests/host/console/program.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

extern char** environ; // NOLINT(readability-redundant-declaration): POSIX asks for it

namespace host {

namespace {

// The server, which is ended with this object.
class Server {
  public:
    // [files] are those of a certificate and its key, for a server that speaks TLS.
    explicit Server(std::vector<std::string> files = {}) : scheme_(files.empty() ? "http" : "https") {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) {
            return;
        }
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        files.insert(files.begin(), {"python3", ECHO_SERVER});
        std::vector<char*> arguments;
        for (std::string& file : files) {
            arguments.push_back(file.data());
        }
        arguments.push_back(nullptr);
        posix_spawnp(&process_, "python3", &actions, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        close(ends[1]);
        char digit = 0;
        while (::read(ends[0], &digit, 1) == 1 && digit != '\n') {
            port_ += digit;
        }
        close(ends[0]);
    }
    ~Server() {
        if (process_ > 0) {
            kill(process_, SIGTERM);
            waitpid(process_, nullptr, 0);
        }
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    std::string url(const std::string& path) const { return scheme_ + "://127.0.0.1:" + port_ + path; }

  private:
    pid_t process_ = 0;
    std::string scheme_;
    std::string port_;
};

class NetworkTest : public ProgramTest {
  protected:
    // Runs a step for a URL of the server with options, in a script that has $body, and returns what came, the
    // error and its detail. In came() line ends but the last are ¶.
    Outcome fetch(const std::string& path, const std::string& options, const std::string& flags = "",
                  const std::string& more = "") {
        write("Fetch.fmscript",
              "Set Error Capture [ On ]\nSet Variable [ $body ; Value: \"a b\" & ¶ & \"ü\" ]\n"
              "Insert from URL [ Select ; With dialog: Off ; Target: $came ; \"" +
                  (path.starts_with("/") ? server_.url(path) : path) + "\" ; cURL options: " + options +
                  " ]\n"
                  "Exit Script [ Text Result: Get ( LastError ) & \"|\" & Substitute ( "
                  "$came ; Char ( 10 ) ; ¶ ) & \"|\" & Get ( LastErrorDetail )" +
                  more + " ]\n");
        return plain("--allow-network " + flags + " run Fetch.fmscript");
    }
    std::string came(const std::string& path, const std::string& options = "\"\"",
                     const std::string& more = "") {
        std::string out = fetch(path, options, "", more).out;
        for (size_t at = out.find('\n'); at != std::string::npos && at + 1 < out.size();
             at = out.find('\n', at)) {
            out.replace(at, 1, "¶");
        }
        return out;
    }

    // A file of keys as the inside of a text, with ¶ for its line ends.
    static std::string pem(const std::string& name) {
        std::string text = read(std::filesystem::path(TLS) / name);
        for (size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n')) {
            text.replace(at, 1, "¶");
        }
        return text;
    }

    Server server_;
};

} // namespace

TEST_F(NetworkTest, NeedsToBeAllowed) {
    write("Fetch.fmscript", "Insert from URL [ Target: $x ; \"" + server_.url("/echo") + "\" ]\n");
    const Outcome refused = plain("run Fetch.fmscript");
    EXPECT_EQ(refused.status, static_cast<int>(ExitCode::failure));
    EXPECT_NE(refused.err.find("the host uses the network with --allow-network only"), std::string::npos);
    write("Fetch.fmscript", "Set Error Capture [ On ]\nInsert from URL [ Target: $x ; \"" +
                                server_.url("/echo") +
                                "\" ]\nExit Script [ Text Result: Get ( LastError ) & $x ]\n");
    expect(plain("run Fetch.fmscript"), ExitCode::ok, "1631\n", "");
}

TEST_F(NetworkTest, Fetches) {
    EXPECT_EQ(came("/echo?a=b c"), "0|GET /echo?a=b%20c¶Accept: */*¶|\n");
    EXPECT_EQ(came("/latin"), "0|é|\n");
    EXPECT_EQ(came("/echo", "\"--range 1-2\""), "0|GET /echo¶Accept: */*¶Range: bytes=1-2¶|\n");
    EXPECT_EQ(came("/status/404"), "0|sorry|\n");
    EXPECT_EQ(came("/redirect"), "0|elsewhere|\n");
    EXPECT_EQ(came("/redirect", "\"-sL --max-redirs 3\""), "0|GET /echo¶Accept: */*¶|\n");
    EXPECT_EQ(came("/bytes/data.bin", "\"\"", " & HexEncode ( $came )"), "0|data.bin|FF00FE\n");
    EXPECT_EQ(came("/named", "\"--FM-return-container-variable\"", " & Base64Encode ( $came )"),
              "0|report.txt|dGV4dA==¶\n");
}

TEST_F(NetworkTest, Sends) {
    EXPECT_EQ(
        came("/echo", "\"-X PUT -H 'X-Test: one two' --data-raw @x\""),
        "0|PUT /echo¶Accept: */*¶Content-Type: application/x-www-form-urlencoded¶X-Test: one two¶@x|\n");
    EXPECT_EQ(came("/echo", "\"--data @$body --data x=1 --user-agent me\""),
              "0|POST /echo¶Accept: */*¶Content-Type: application/x-www-form-urlencoded¶User-Agent: me¶a "
              "bü&x=1|\n");
    EXPECT_EQ(came("/echo", "\"--data-binary @$body --header Content-Type:text/plain\""),
              "0|POST /echo¶Accept: */*¶Content-Type: text/plain¶a b¶ü|\n");
    EXPECT_EQ(came("/echo?q=1", "\"-G --data-urlencode name@$body --data-urlencode 'é='\""),
              "0|GET /echo?q=1&name=a%20b%0D%C3%BC&%C3%A9=¶Accept: */*¶|\n");
    EXPECT_EQ(came("/echo", "\"--json '{\\\"a\\\":1}' --user ida:secret --cookie k=v --referer r\""),
              "0|POST /echo¶Accept: application/json¶Authorization: Basic aWRhOnNlY3JldA==¶Content-Type: "
              "application/json¶Cookie: k=v¶Referer: r¶{\"a\":1}|\n");
    EXPECT_EQ(came("/echo", "\"-T $body --oauth2-bearer token\""),
              "0|PUT /echo¶Accept: */*¶Authorization: Bearer token¶a b¶ü|\n");
    const std::string form = came("/echo", "\"-F a=1 -F 'f=@$body;type=text/plain' --form-string s=@x\"");
    for (const char* part : {"Content-Type: multipart/form-data; boundary=", "name=\"a\"",
                             "filename=\"body\"", "Content-Type: text/plain", "a b¶ü", "@x"}) {
        EXPECT_NE(form.find(part), std::string::npos) << part << form;
    }
}

TEST_F(NetworkTest, PutsPartsElsewhere) {
    write("sent.txt", "from a file");
    EXPECT_EQ(came("/echo", "\"-d @sent.txt -o out.txt\"", " & Get ( LastError )"), "0||0\n");
    EXPECT_NE(read(folder_ / "out.txt").find("from a file"), std::string::npos);
    EXPECT_EQ(came("/echo", "\"--output $other --dump-header $head\"",
                   " & PatternCount ( $other ; \"GET /echo\" ) & PatternCount ( $head ; \"X-Answer: 42\" )"),
              "0||11\n");
    EXPECT_EQ(came("/echo", "\"--head\"").substr(0, 2), "0|");
    EXPECT_NE(came("/echo", "\"-I\"").find("X-Answer: 42"), std::string::npos);
}

TEST_F(NetworkTest, KeepsCookiesAndTellsWhatHappened) {
    EXPECT_EQ(came("/cookie", "\"--cookie-jar $jar\"", " & PatternCount ( $jar ; \"flavour\tplain\" )"),
              "0|taken|1\n");
    EXPECT_EQ(came("/cookie", "\"-c jar.txt\""), "0|taken|\n");
    EXPECT_NE(came("/echo", "\"-b jar.txt\"").find("Cookie: flavour=plain"), std::string::npos);
    EXPECT_EQ(came("/status/404", "\"--trace-ascii $seen -v\"",
                   " & PatternCount ( $seen ; \"> GET /status/404\" ) & PatternCount ( $seen ; \"sorry\" )"),
              "0|sorry|11\n");
    EXPECT_EQ(came("/echo", "\"--max-filesize 5 --tcp-nodelay\"").substr(0, 6), "1631||");
    EXPECT_EQ(came("/named", "\"--max-filesize 1K --limit-rate 1M\""), "0|text|\n");
    EXPECT_EQ(came("/redirect", "\"-L -d x=1 --post302\"").substr(0, 11), "0|POST /ech");
}

// The key is that of the server's own certificate; locked_key.pem has it with the password "open".
TEST_F(NetworkTest, ShowsACertificate) {
    const Server tls({TLS "/certificate.pem", TLS "/key.pem"});
    const std::string trust = "--cacert '" TLS "/certificate.pem' ";
    EXPECT_EQ(came(tls.url("/status/200"), "\"\"").substr(0, 6), "1628||");
    EXPECT_EQ(came(tls.url("/status/200"), "\"" + trust + "\"").substr(0, 5), "1631|");
    EXPECT_EQ(came(tls.url("/status/200"),
                   "\"" + trust + "--cert '" TLS "/certificate.pem' --key '" TLS "/key.pem'\""),
              "0|sorry|\n");
    EXPECT_EQ(came(tls.url("/status/200"), "\"-k -E '" TLS "/certificate.pem' --key '" TLS
                                           "/locked_key.pem' --pass open --tlsv1.2\""),
              "0|sorry|\n");
    EXPECT_EQ(came(tls.url("/status/200"),
                   "\"-k -E '" TLS "/certificate.pem:open' --key '" TLS "/locked_key.pem'\""),
              "0|sorry|\n");
    EXPECT_EQ(came(tls.url("/status/200"),
                   "\"-k -E '" TLS "/certificate.pem' --key '" TLS "/locked_key.pem' --pass shut\"")
                  .substr(0, 6),
              "1628||");
    // From variables.
    EXPECT_EQ(came(tls.url("/status/200"),
                   "Let ( [ $certificate = \"" + pem("certificate.pem") + "\" ; $key = \"" + pem("key.pem") +
                       "\" ] ; \"--cacert $certificate --cert $certificate --key $key\" )"),
              "0|sorry|\n");
}

TEST_F(NetworkTest, FailsWithFileMakersCodes) {
    EXPECT_EQ(came("/status/404", "\"--fail\""),
              "1631||" + server_.url("/status/404") + ": The requested URL returned error: 404\n");
    EXPECT_EQ(came("/status/401", "\"-f\"").substr(0, 6), "1627||");
    EXPECT_EQ(came("http://127.0.0.1:1/").substr(0, 6), "1631||");
    EXPECT_EQ(came("gopher://127.0.0.1/").substr(0, 6), "1626||");
    EXPECT_EQ(came("http://").substr(0, 6), "1630||");
    EXPECT_EQ(came("/slow", "\"--max-time .2\"").substr(0, 6), "1629||");
}

TEST_F(NetworkTest, RefusesOptionsThatItDoesNotKnow) {
    EXPECT_EQ(came("/echo", "\"--frobnicate\"").substr(0, 56),
              "3||there is no cURL option --frobnicate here; there are ");
    EXPECT_EQ(came("/echo", "\"--header\""), "3||the cURL option --header expects a value\n");
    EXPECT_EQ(came("/echo", "\"--max-time soon\""), "3||--max-time expects a number, found soon\n");
    EXPECT_EQ(came("/echo", "\"POST\""), "3||expected a cURL option, found POST\n");
    EXPECT_EQ(came("/echo", "\"-H 'x\""), "3||the cURL options have a quote ' without its end\n");
    EXPECT_EQ(came("/echo", "\"-d @missing.txt\"").substr(0, 5), "100||");
}

TEST_F(NetworkTest, TheTimeLimitEndsATransfer) {
    const auto start = std::chrono::steady_clock::now();
    const Outcome late = fetch("/slow", "\"\"", "--timeout 1");
    EXPECT_EQ(late.status, static_cast<int>(ExitCode::failure));
    EXPECT_NE(late.err.find("it takes longer than --timeout allows"), std::string::npos) << late.err;
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST_F(NetworkTest, AnInterruptEndsATransfer) {
    write("Fetch.fmscript", "Set Error Capture [ On ]\nInsert from URL [ Target: $x ; \"" +
                                server_.url("/slow") + "\" ]\nExit Script [ Text Result: \"on\" ]\n");
    const std::string command = "cd " + folder_.string() +
                                " && timeout --preserve-status -s INT 1 " FMHOST
                                " --no-plugin --allow-network run Fetch.fmscript >out 2>err";
    const auto start = std::chrono::steady_clock::now();
    static_cast<void>(std::system(command.c_str()));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    EXPECT_EQ(read(folder_ / "out"), "");
}

} // namespace host
