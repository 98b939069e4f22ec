// A program that uses all of the C++ layer, the same for every compiler: what it prints must be the
// same, too. It gets a directory for its files and a DICOMDIR.
#include <pgkit/data_set.hpp>

#include <cstdio>
#include <string>
#include <vector>

namespace {

int Fail(const pgkit::error& error) {
    std::printf("FAILED: %s\n", error.message.c_str());
    return 1;
}

pgkit::result<void> Build(pgkit::data_set& image) {
    pgkit::result<void> done;
    done &= image.set_text("SpecificCharacterSet", "ISO_IR 100");
    done &= image.set_text("SOPClassUID", "1.2.840.10008.5.1.4.1.1.7");
    done &= image.set_text("SOPInstanceUID", "1.2.3");
    done &= image.set_text("PatientName", "M\xC3\xBCller^Eva");
    done &= image.set_texts("ImageType", {"ORIGINAL", "PRIMARY"});
    done &= image.set_number("InstanceNumber", 7);
    done &= image.set_numbers("PixelSpacing", {0.1, 1.0 / 3});
    done &= image.set_number("AcquisitionDuration", 1.5);
    done &= image.set_text("RequestAttributesSequence[0].ScheduledProcedureStepDescription",
                           "Sch\xC3\xA4"
                           "del");
    for (const char* const path : {"SamplesPerPixel", "Rows", "PixelRepresentation"})
        done &= image.set_number(path, 1);
    done &= image.set_number("Columns", 2);
    done &= image.set_number("BitsAllocated", 16);
    done &= image.set_number("NumberOfFrames", 2);
    const std::uint16_t pixels[] = {1, 2, 3, 65535};
    done &= image.set_bytes("PixelData", pixels, sizeof pixels);
    auto added = image.add({0x0009, 0x1001}, VR_FL);
    done &= added;
    done &= added->set_numbers({0.5f, -1e-3f});
    return done;
}

void PrintErrors(pgkit::data_set& image) {
    const std::string texts[] = {
        image.set_text("PatientName", "\xD0\x9C").error().message,
        image.set_number("Rows", 70000).error().message,
        image.set_text("RequestAttributesSequence[3].PatientName", "x").error().message,
        image.set_text("NoSuchName", "x").error().message,
        pgkit::data_set::open("no/such/file").error().message,
        pgkit::data_set::open(".").error().message};
    for (const std::string& text : texts)
        std::printf("%s\n", text.c_str());
}

void PrintTree(const pgkit::data_set& image) {
    pgkit::walk(image, [](const pgkit::element& element, std::size_t depth) {
        if (element.tag().group == 0x0002) return;
        std::printf("%u %s %s %s [%s]", static_cast<unsigned>(depth), element.tag().text().c_str(),
                    element.vr_name().c_str(), element.name().c_str(), element.text().c_str());
        for (const double number : element.numbers<double>())
            std::printf(" %.3f", number);
        std::printf("\n");
    });
}

void PrintFrames(const pgkit::data_set& image) {
    std::vector<std::uint8_t> room;
    for (const pgkit::frame frame : image.frames()) {
        std::printf("frame:");
        for (const std::uint8_t byte : frame.bytes(room))
            std::printf(" %u", unsigned{byte});
        std::printf("\n");
    }
}

void PrintDisc(const pgkit::directory& disc) {
    for (const pgkit::patient patient : disc.patients()) {
        std::printf("%s %s\n", patient.id().c_str(), patient.name().c_str());
        for (const pgkit::study study : patient.studies())
            for (const pgkit::series series : study.series())
                for (const pgkit::leaf leaf : series.leaves())
                    std::printf("  %s %s %d %s\n", study.date().c_str(), series.modality().c_str(),
                                static_cast<int>(leaf.number()), leaf.instance_uid().c_str());
    }
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) return 2;
    pgkit::data_set image = pgkit::data_set::create();
    if (auto built = Build(image); !built) return Fail(built.error());
    PrintErrors(image);
    const std::string path = arguments[1] + std::string("/tour.dcm");
    for (const pgkit::encoding how :
         {pgkit::encoding::explicit_big, pgkit::encoding::implicit_little}) {
        if (auto saved = image.save(path, how); !saved) return Fail(saved.error());
        auto read = pgkit::data_set::open(path, {how == pgkit::encoding::explicit_big ? 0u : 64u});
        if (!read) return Fail(read.error());
        image = *std::move(read);
        std::printf("%s\n", image.find("TransferSyntaxUID").text().c_str());
        PrintTree(image);
        PrintFrames(image);
    }
    pgkit::walk(image, [](pgkit::element& element) {
        return element.tag().group == 0x0008 ? pgkit::visit::remove : pgkit::visit::go_on;
    });
    std::printf("%s\n", image.begin()->tag().text().c_str());
    const auto disc = pgkit::directory::open(arguments[2]);
    if (!disc) return Fail(disc.error());
    PrintDisc(*disc);
    return 0;
}
