// Short names for the classes of a hierarchy, for tests that go through all of them.
#pragma once

#include <pgkit/directory_records.h>

namespace pgkit_test::object_classes {

using Patient = PGX_DicomDirPatientNode;
using Study = PGX_DicomDirStudyNode;
using Series = PGX_DicomDirSeriesNode;
using Leaf = PGX_DicomDirLeafNode;
using Image = PGX_DicomDirImageNode;
using Report = PGX_DicomDirReportNode;
using KeyObject = PGX_DicomDirKeyObjectNode;
using Presentation = PGX_DicomDirPresentationNode;
using Document = PGX_DicomDirEncapsulatedDocNode;
using Waveform = PGX_DicomDirWaveformNode;
using RawData = PGX_DicomDirRawDataNode;

}  // namespace pgkit_test::object_classes
