// pgkit: value representation codes.
//
// A value representation (VR) is one unsigned code. Dictionary tables and the node constructor hold
// it in one byte, nodes in 32 bits.
#ifndef PGKIT_VALUE_REPRESENTATION_H
#define PGKIT_VALUE_REPRESENTATION_H

typedef enum ValueRepresentation {
    VR_UL = 0,
    VR_UI = 1,
    VR_US = 2,
    VR_AE = 3,
    VR_AT = 4,
    VR_LO = 5,
    VR_OB = 6,
    VR_SH = 7,
    VR_CS = 8,
    VR_SQ = 9,
    VR_DA = 10,
    VR_TM = 11,
    VR_DT = 12,
    VR_ST = 13,
    VR_PN = 14,
    VR_IS = 15,
    VR_DS = 16,
    VR_LT = 17,
    VR_FL = 18,
    VR_AS = 19,
    VR_SL = 20,
    VR_FD = 21,
    VR_SS = 22,
    VR_USSS = 23, /* US or SS, as Pixel Representation says; printed and looked up as "USSS" */
    VR_OW = 24,
    VR_UT = 25,
    VR_OF = 26,
    VR_OWOB = 27, /* OW or OB, as the transfer syntax says; printed and looked up as "OWOB" */
    VR_UN = 28,
    /* in the current edition only (edition.h): */
    VR_OD = 29,
    VR_OL = 30,
    VR_OV = 31,
    VR_SV = 32,
    VR_UC = 33,
    VR_UR = 34,
    VR_UV = 35,
    VR_Unknown = 255 /* no dictionary entry, or a VR field that names no VR of this list */
} ValueRepresentation;

#endif
