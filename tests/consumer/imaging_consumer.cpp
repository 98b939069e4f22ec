// A host of the imaging module: prints how many frames a file has.
#include <pgkit/imaging.h>

#include <cstdio>

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) return 2;
    void* const image = vwImaAllocEmptyDicomImage();
    if (vwImaLoadFrom(image, arguments[1]) == 1) {
        std::printf("%u frames\n", static_cast<unsigned>(vwImaGetNumber(image)));
    }
    vwImaFreeDicomImage(image);
    return 0;
}
