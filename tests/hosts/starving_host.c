/* A host in C that has less and less memory: for each amount a process of its own calls every flat
   function. It must end by itself, whatever is missing, with results that the headers state. */
#define _DEFAULT_SOURCE
#include <alloca.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "every_function.h"

enum { kStack = 512 << 10, kSeconds = 60 };

/* ---- Exhausting memory ----------------------------------------------------------------------- */

/* Pages that the process has addresses for. */
static size_t AddressSpace(void) {
    char text[32] = "";
    const int file = open("/proc/self/statm", O_RDONLY);
    const ssize_t length = read(file, text, sizeof text - 1);
    close(file);
    return length <= 0 ? 0 : strtoul(text, NULL, 10) * (size_t)sysconf(_SC_PAGESIZE);
}

/* No more addresses, neither for the heap nor for mappings. The stack has what it needs already: a
   process whose stack cannot grow is killed. */
static int EndGrowth(void) {
    volatile char* const stack = alloca(kStack);
    for (size_t i = 0; i < kStack; i += 1024)
        stack[i] = 0;
    const size_t size = AddressSpace();
    const struct rlimit limit = {size, size};
    return size == 0 ? -1 : setrlimit(RLIMIT_AS, &limit);
}

typedef struct Piece {
    struct Piece* next;
} Piece;

/* Takes all pieces of a size that the heap still has. */
static Piece* TakeAll(size_t size, Piece* taken) {
    Piece* piece;
    while ((piece = malloc(size)) != NULL) {
        piece->next = taken;
        taken = piece;
    }
    return taken;
}

/* What a heap without addresses to grow into can give afterwards is `room` bytes, in pieces that
   lie beside each other for the most part. */
static void LeaveRoom(size_t room) {
    enum { kLarge = 4096, kSmall = 32 };
    Piece* large = TakeAll(kLarge, NULL);
    TakeAll(kSmall, NULL);
    for (size_t given = 0; large != NULL && given < room; given += kLarge) {
        Piece* const next = large->next;
        free(large);
        large = next;
    }
}

/* ---- Steps ----------------------------------------------------------------------------------- */

/* Heap enough for the largest room, which the limit would not let grow any more. */
static void GrowHeap(size_t room) {
    enum { kPiece = 4096 };
    Piece* taken = NULL;
    for (size_t size = 0; size < room; size += kPiece) {
        Piece* const piece = malloc(kPiece);
        if (piece == NULL) break;
        piece->next = taken;
        taken = piece;
    }
    /* Its end stays in use, so that the heap does not shrink. */
    void* const end = malloc(16);
    while (taken != NULL) {
        Piece* const next = taken->next;
        free(taken);
        taken = next;
    }
    if (end == NULL) _exit(3);
}

static void RunStarving(const HostFiles* files, size_t room, size_t largestRoom) {
    alarm(kSeconds);
    GrowHeap(largestRoom);
    if (EndGrowth() != 0) _exit(2);
    LeaveRoom(room);
    _exit(CallEveryFunction(files) == 0 ? 0 : 1);
}

static int RunStep(const HostFiles* files, size_t room, size_t largestRoom) {
    int status = 0;
    const pid_t child = fork();
    if (child == 0) RunStarving(files, room, largestRoom);
    if (child < 0 || waitpid(child, &status, 0) != child) return -1;
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return 0;
    fprintf(stderr, "with %zu bytes: %s %d\n", room, WIFSIGNALED(status) ? "signal" : "exit status",
            WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status));
    return 1;
}

/* starving_host STEPS LARGEST DATASET DICOMDIR MEDIUM FILE DICTIONARY OUTPUT: so many rooms, from
   the largest, in bytes, down to none, and dense at the small end. */
int main(int argc, char** argv) {
    if (argc != 9) return 2;
    const size_t steps = strtoul(argv[1], NULL, 10);
    const size_t largest = strtoul(argv[2], NULL, 10);
    const HostFiles files = {argv[3], argv[4], argv[5], argv[6], argv[7], argv[8]};
    int failed = CallEveryFunction(&files);
    if (failed != 0) fprintf(stderr, "with all memory there is: %d wrong results\n", failed);
    for (size_t step = steps; step-- > 0;) {
        const size_t room = largest / steps * step / steps * step;
        failed += RunStep(&files, room, largest) != 0;
    }
    printf("%zu steps, %d failed\n", steps, failed);
    return failed == 0 ? 0 : 1;
}
