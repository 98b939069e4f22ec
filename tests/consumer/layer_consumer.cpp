// A host in C++ on the layer: prints the patient's name of a file it has just made.
#include <pgkit/data_set.hpp>

#include <cstdio>

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) return 2;
    pgkit::data_set made = pgkit::data_set::create();
    pgkit::result<void> done = made.set_text("PatientName", "DOE^JANE");
    if (done) done &= made.save(arguments[1]);
    if (!done) std::fprintf(stderr, "%s\n", done.error().message.c_str());
    const auto read = pgkit::data_set::open(arguments[1]);
    std::printf("%s\n", read->find("PatientName").text().c_str());
    return done && read ? 0 : 1;
}
