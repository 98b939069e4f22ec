// Where a program of Microsoft's ABI with a main of its own begins.
extern "C" {
int* __p___argc(void);
char*** __p___argv(void);
int _configure_narrow_argv(int mode);
void exit(int status);
int _fltused = 0;
}

int main(int argumentCount, char** arguments);

extern "C" void Start() {
    constexpr int kUnexpandedArguments = 1;
    _configure_narrow_argv(kUnexpandedArguments);
    exit(main(*__p___argc(), *__p___argv()));
}
