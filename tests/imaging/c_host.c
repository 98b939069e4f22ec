/* A host program in C: writes the thumbnail of an image as a BMP file and prints what it is.
   Arguments: image, size, BMP file. */
#include <pgkit/imaging.h>
#include <stdio.h>
#include <stdlib.h>

/* Freeing the bitmap takes the system's own call, which the end of the process replaces. */
static void* thumbnail;

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    void* const image = vwImaAllocEmptyDicomImage();
    if (vwImaLoadFrom(image, argv[1]) == 0) {
        printf("no image\n");
        vwImaFreeDicomImage(image);
        return 1;
    }
    printf("%s, %u frames\n", vwImaIsGrayscaleImage(image) ? "grayscale" : "colour",
           (unsigned)vwImaGetNumber(image));
    thumbnail = vwGetThumbnailDib(image, (uint32_t)strtoul(argv[2], NULL, 10));
    vwImaFreeDicomImage(image);
    return vwWriteDib(thumbnail, argv[3]) == 1 ? 0 : 1;
}
