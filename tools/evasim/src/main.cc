// evasim: the SSSU and EVA array simulator. With "FILE <script>" (one argument or two) it is SSSU;
// with anything else it is its own administration tool.
#include "admin_cli.h"
#include "sssu_run.h"
#include "state_location.h"
#include "text_util.h"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

int main(int argc, char **argv)
{
    using namespace evasim;
    const std::string database = StateLocation::database(argv[0]);
    std::string script;
    bool sssu = false;
    if (argc == 2 && istartsWith(argv[1], "FILE ")) {
        script = trim(std::string(argv[1]).substr(5));
        sssu = !script.empty();
    } else if (argc == 3 && iequals(argv[1], "FILE")) {
        script = argv[2];
        sssu = true;
    }
    if (sssu) {
        int status = 1;
        try {
            SssuRun run(database, script);
            status = run.run();
            // The world of the run (10,000 disks and more) goes with the process instead of being
            // freed record by record, which costs more than a command; everything is written.
            std::cout.flush();
            std::_Exit(status);
        } catch (const std::exception &e) {
            std::cout << "\nError: " << e.what() << std::flush;
        }
        return status;
    }
    std::vector<std::string> args(argv + 1, argv + argc);
    return AdminCli(database, std::cout, std::cerr).run(args);
}
