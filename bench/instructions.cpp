// One job, a number of times, for a tool that counts instructions: instructions JOB TIMES. Without
// arguments the names of the jobs.
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>

#include "bench_files.h"
#include "pgkit/pgkit.h"

namespace {

using namespace pgkit_bench;

void Open(const std::string& path, uint32_t loadLimit) {
    pgCloseDataSet(pgOpenDataSetFileEx(path.c_str(), loadLimit, PG_OPEN_SKIP_FRAGMENTS));
}

void Save(const std::string& path, int32_t mode) {
    PGX_Node* const root = pgOpenDataSetFile(path.c_str(), 64);
    root->SaveDataSetAsEx(OutputPath().c_str(), mode);
    pgCloseDataSet(root);
}

void OpenInCurrentEdition(const std::string& path) {
    pgxUseEdition(PGX_EDITION_CURRENT);
    Open(path, 64);
}

const std::map<std::string, std::function<void()>> kJobs = {
    {"open-headers", [] { Open(SmallFiles()[0], 64); }},
    {"open-headers-current", [] { OpenInCurrentEdition(SmallFiles()[0]); }},
    {"open-all-values", [] { Open(SmallFiles()[0], 0xFFFFFFFF); }},
    {"open-million-explicit", [] { Open(BigExplicitFile(), 64); }},
    {"open-million-implicit", [] { Open(BigImplicitFile(), 64); }},
    {"open-million-implicit-current", [] { OpenInCurrentEdition(BigImplicitFile()); }},
    {"save-small", [] { Save(SmallFiles()[0], 0); }},
    {"re-encode-million",
     [] { Save(BigImplicitFile(), PG_META | PG_EXPLICIT_VR | PG_LITTLE_ENDIAN); }},
};

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) {
        for (const auto& job : kJobs)
            std::puts(job.first.c_str());
        return 0;
    }
    for (int times = std::atoi(arguments[2]); times > 0; --times)
        kJobs.at(arguments[1])();
    return 0;
}
