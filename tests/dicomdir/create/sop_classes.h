// SOP classes, by what becomes of their instances in a DICOMDIR.
#pragma once

namespace pgkit_test {

constexpr char kPdf[] = "1.2.840.10008.5.1.4.1.1.104.1";
constexpr char kPresentation[] = "1.2.840.10008.5.1.4.1.1.11.1";
constexpr char kXa[] = "1.2.840.10008.5.1.4.1.1.12.1";
constexpr char kCt[] = "1.2.840.10008.5.1.4.1.1.2";
constexpr char kUsMultiFrame[] = "1.2.840.10008.5.1.4.1.1.3.1";
constexpr char kSpectroscopy[] = "1.2.840.10008.5.1.4.1.1.4.2";
constexpr char kUs[] = "1.2.840.10008.5.1.4.1.1.6.1";
constexpr char kRawData[] = "1.2.840.10008.5.1.4.1.1.66";
constexpr char kReport[] = "1.2.840.10008.5.1.4.1.1.88.11";
constexpr char kKeyObject[] = "1.2.840.10008.5.1.4.1.1.88.59";
constexpr char kWaveform[] = "1.2.840.10008.5.1.4.1.1.9.1.1";

}  // namespace pgkit_test
