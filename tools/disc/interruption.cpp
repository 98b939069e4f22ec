#include "disc/interruption.h"

#include <csignal>

namespace pgtool {

namespace {

volatile std::sig_atomic_t received = 0;

extern "C" void Receive(int signal) {
    received = signal;
    std::signal(signal, SIG_DFL);
}

// What is ignored, as by a shell for a program in the background, stays so.
void (*Handle(int signal))(int) {
    void (*const former)(int) = std::signal(signal, Receive);
    if (former == SIG_IGN) std::signal(signal, SIG_IGN);
    return former;
}

}  // namespace

Interruption::Interruption()
    : formerInterrupt_(Handle(SIGINT)), formerTerminate_(Handle(SIGTERM)) {}

Interruption::~Interruption() {
    std::signal(SIGINT, formerInterrupt_);
    std::signal(SIGTERM, formerTerminate_);
}

bool Interruption::Came() { return received != 0; }

void Interruption::Obey() {
    if (received == 0) return;
    std::signal(received, SIG_DFL);
    std::raise(received);
}

}  // namespace pgtool
