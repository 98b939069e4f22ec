#include "support/kinds_of_files.h"

#include <string_view>

namespace pgkit_test {

namespace {

constexpr std::string_view kStorage = "1.2.840.10008.5.1.4.1.1.";

StreamBuilder Items(int count) {
    StreamBuilder content;
    for (int i = 0; i < count; ++i)
        content.Item().Element(0x0008, 0x0100, "SH", "113000").EndItem();
    return content;
}

void Date(InstanceFile& file) {
    file.Set(0x0008, 0x0023, "DA", "20240229").Set(0x0008, 0x0033, "TM", "115959");
}

void Identify(InstanceFile& file) {
    Date(file);
    file.Set(0x0070, 0x0080, "CS", "LABEL").Set(0x0070, 0x0081, "LO", "What it shows");
    file.Set(0x0070, 0x0084, "PN", "ROE^JANE");
}

constexpr const char* kDated = "0008,0023=20240229 0008,0033=115959";
constexpr const char* kIdentified =
    "0008,0023=20240229 0008,0033=115959 0070,0080=LABEL 0070,0081=What it shows "
    "0070,0084=ROE^JANE";

class Kinds {
  public:
    InstanceFile& Add(const char* recordType, std::string_view sopClass, std::string keys = "",
                      bool isAtRoot = false) {
        const int number = static_cast<int>(kinds_.size()) + 1;
        InstanceFile file = Instance(number).SopClass(sopClass).Set(0x0008, 0x0060, "CS", "OT");
        file.Remove(0x0028, 0x0004).Remove(0x0028, 0x0010).Remove(0x0028, 0x0011);
        if (isAtRoot) file.Remove(0x0020, 0x000D).Remove(0x0020, 0x000E);
        kinds_.push_back({recordType, std::string(sopClass), isAtRoot, std::move(keys), file});
        return kinds_.back().file;
    }
    InstanceFile& AddStored(const char* recordType, std::string_view sopClass,
                            std::string keys = "") {
        return Add(recordType, std::string(kStorage).append(sopClass), std::move(keys));
    }
    std::vector<KindOfFile> Take() { return std::move(kinds_); }

  private:
    std::vector<KindOfFile> kinds_;
};

void AddRadiotherapy(Kinds& kinds) {
    kinds.AddStored("RT DOSE", "481.2", "3004,000A=PLAN").Set(0x3004, 0x000A, "CS", "PLAN");
    kinds.AddStored("RT STRUCTURE SET", "481.3", "3006,0002=HEAD 3006,0008=20240101 3006,0009=1200")
        .Set(0x3006, 0x0002, "SH", "HEAD")
        .Set(0x3006, 0x0008, "DA", "20240101")
        .Set(0x3006, 0x0009, "TM", "1200");
    for (const char* const plan : {"481.5", "481.8"}) {
        kinds.AddStored("RT PLAN", plan, "300A,0002=PLAN1 300A,0006=20240102 300A,0007=")
            .Set(0x300A, 0x0002, "SH", "PLAN1")
            .Set(0x300A, 0x0006, "DA", "20240102");
    }
    kinds.AddStored("RT TREAT RECORD", "481.7", "3008,0250=20240103 3008,0251=1300")
        .Set(0x3008, 0x0250, "DA", "20240103")
        .Set(0x3008, 0x0251, "TM", "1300");
    kinds.AddStored("RADIOTHERAPY", "481.13", "0070,0081= 0070,0084= 3010,0033=LABEL")
        .Set(0x3010, 0x0033, "SH", "LABEL");
    kinds.Add("PLAN", "1.2.840.10008.5.1.4.34.7");
}

void AddDocuments(Kinds& kinds) {
    Date(
        kinds
            .AddStored("SR DOCUMENT", "88.34",
                       std::string(kDated) + " 0040,A043=1 0040,A491=COMPLETE 0040,A493=UNVERIFIED")
            .Set(0x0040, 0xA491, "CS", "COMPLETE")
            .Set(0x0040, 0xA493, "CS", "UNVERIFIED")
            .SetSequence(0x0040, 0xA043, Items(1)));
    Date(kinds.AddStored("KEY OBJECT DOC", "88.59", std::string(kDated) + " 0040,A043=1")
             .SetSequence(0x0040, 0xA043, Items(1)));
    const char* const kDocument =
        "0008,0023=20240229 0008,0033=115959 0040,A043=0 0042,0010=Letter 0042,0012=text/XML";
    const auto addDocument = [&](const char* sopClass, const std::string& keys) -> InstanceFile& {
        InstanceFile& file = kinds.AddStored("ENCAP DOC", sopClass, keys);
        Date(file);
        return file.Set(0x0042, 0x0010, "ST", "Letter").Set(0x0042, 0x0012, "LO", "text/XML");
    };
    addDocument("104.1", kDocument);
    addDocument("104.3", kDocument);
    addDocument(
        "104.2",
        "0008,0023=20240229 0008,0033=115959 0040,A043=0 0040,E001=1.2.3^4 0042,0010=Letter "
        "0042,0012=text/XML")
        .Set(0x0040, 0xE001, "ST", "1.2.3^4");
}

void AddPresentations(Kinds& kinds) {
    const auto add = [&](const char* sopClass, const char* blending) -> InstanceFile& {
        return kinds
            .AddStored("PRESENTATION", sopClass,
                       std::string("0070,0080=LABEL 0070,0081= 0070,0082=20240104 "
                                   "0070,0083=1400 0070,0084=") +
                           blending)
            .Set(0x0070, 0x0080, "CS", "LABEL")
            .Set(0x0070, 0x0082, "DA", "20240104")
            .Set(0x0070, 0x0083, "TM", "1400");
    };
    add("11.1", "");
    add("11.12", "");
    add("11.4", " 0070,0402=2").SetSequence(0x0070, 0x0402, Items(2));
}

void AddMeasurements(Kinds& kinds) {
    Date(kinds.AddStored("WAVEFORM", "9.7.1", kDated));
    Date(kinds.AddStored("RAW DATA", "66", kDated));
    Date(kinds.AddStored("SURFACE SCAN", "68.1", kDated));
    Identify(kinds.AddStored("REGISTRATION", "66.3", kIdentified));
    Identify(kinds.AddStored("FIDUCIAL", "66.2", kIdentified));
    Identify(kinds.AddStored("VALUE MAP", "67", kIdentified));
    Identify(kinds.AddStored("MEASUREMENT", "78.1", kIdentified));
    Identify(kinds.AddStored("SURFACE", "66.5", kIdentified));
    Identify(kinds.AddStored("TRACT", "66.6", kIdentified));
    Identify(kinds.AddStored("ANNOTATION", "91.1", kIdentified));
    Identify(kinds.AddStored("STEREOMETRIC", "77.1.5.3",
                             "0070,0080=LABEL 0070,0081=What it shows 0070,0084=ROE^JANE"));
    kinds.AddStored("ASSESSMENT", "90.1", "0008,0012=20240105 0008,0013=")
        .Set(0x0008, 0x0012, "DA", "20240105");
    const std::string ul("\x02\0\0\0", 4);
    Date(kinds
             .AddStored("SPECTROSCOPY", "4.2",
                        "0008,0008=ORIGINAL\\PRIMARY 0008,0023=20240229 0008,0033=115959 "
                        "0028,0008=3 0028,0010=5 0028,0011=6 0028,9001=2 0028,9002=2")
             .Set(0x0008, 0x0008, "CS", "ORIGINAL\\PRIMARY")
             .Set(0x0028, 0x0008, "IS", "3")
             .SetUS(0x0028, 0x0010, 5)
             .SetUS(0x0028, 0x0011, 6)
             .Set(0x0028, 0x9001, "UL", ul)
             .Set(0x0028, 0x9002, "UL", ul));
}

void AddRootObjects(Kinds& kinds) {
    kinds
        .Add("HANGING PROTOCOL", "1.2.840.10008.5.1.4.38.1",
             "0072,0002=CHEST 0072,0004=Chest twice 0072,0006=SITE 0072,0008=ROE "
             "0072,000A=20240106 0072,000C=1 0072,000E=0 0072,0014=1",
             true)
        .Set(0x0072, 0x0002, "SH", "CHEST")
        .Set(0x0072, 0x0004, "LO", "Chest twice")
        .Set(0x0072, 0x0006, "CS", "SITE")
        .Set(0x0072, 0x0008, "LO", "ROE")
        .Set(0x0072, 0x000A, "DT", "20240106")
        .SetSequence(0x0072, 0x000C, Items(1))
        .SetUS(0x0072, 0x0014, 1);
    kinds.Add("PALETTE", "1.2.840.10008.5.1.4.39.1", "0070,0080=HOT_IRON 0070,0081=Hot iron", true)
        .Set(0x0070, 0x0080, "CS", "HOT_IRON")
        .Set(0x0070, 0x0081, "LO", "Hot iron");
    kinds
        .Add("IMPLANT", "1.2.840.10008.5.1.4.43.1",
             "0008,0070=MAKER 0022,1095=HIP 0022,1097=4711 0068,6210=7", true)
        .Set(0x0008, 0x0070, "LO", "MAKER")
        .Set(0x0022, 0x1095, "LO", "HIP")
        .Set(0x0022, 0x1097, "LO", "4711")
        .Set(0x0068, 0x6210, "LO", "7");
    kinds
        .Add("IMPLANT ASSY", "1.2.840.10008.5.1.4.44.1",
             "0008,0070=MAKER 0076,0001=HIP 0076,0020=1", true)
        .Set(0x0008, 0x0070, "LO", "MAKER")
        .Set(0x0076, 0x0001, "LO", "HIP")
        .SetSequence(0x0076, 0x0020, Items(1));
    kinds.Add("IMPLANT GROUP", "1.2.840.10008.5.1.4.45.1", "0078,0001=HIPS 0078,0020=MAKER", true)
        .Set(0x0078, 0x0001, "LO", "HIPS")
        .Set(0x0078, 0x0020, "LO", "MAKER");
    Date(kinds.Add("INVENTORY", "1.2.840.10008.5.1.4.1.1.201.1",
                   std::string(kDated) + " 0008,0401=", true));
}

}  // namespace

std::vector<KindOfFile> EveryKindOfFile() {
    Kinds kinds;
    AddRadiotherapy(kinds);
    AddDocuments(kinds);
    AddPresentations(kinds);
    AddMeasurements(kinds);
    AddRootObjects(kinds);
    return kinds.Take();
}

InstanceFile WithoutKeys(const KindOfFile& kind) {
    InstanceFile file = InstanceFile().SopClass(kind.sopClass);
    file.Remove(0x0028, 0x0010).Remove(0x0028, 0x0011);
    if (kind.isAtRoot) file.Remove(0x0020, 0x000D).Remove(0x0020, 0x000E);
    return file;
}

}  // namespace pgkit_test
