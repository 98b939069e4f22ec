// pgtool profiles: the media application profiles, and what they allow.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "commands.h"
#include "lookup.h"
#include "pgkit/edition.h"
#include "pgkit/profiles.h"
#include "profile_names.h"
#include "words.h"

namespace pgtool {

namespace {

// What the library calls a kind of rules, and how it is shown.
struct RuleKind {
    std::string_view name;
    const char* label;
    const char* any;
};
constexpr RuleKind kRuleKinds[] = {{"image", "images", "any SOP class"},
                                   {"photometric", "photometric", "any"},
                                   {"other", "others", "any SOP class"}};

// Rules of one kind that differ in their transfer syntax alone.
struct Allowance {
    std::string what;
    Arguments transferSyntaxes;
};

// Photometric interpretations, and UIDs without a name, are their own names.
std::string NameOf(std::string_view value) {
    const std::string name = Lookup(pgxUidName, std::string(value)).value_or("");
    return name.empty() ? std::string(value) : name;
}

std::string RulesOf(int32_t index) {
    std::string text(pgxProfileRules(index, nullptr, 0), '\0');
    pgxProfileRules(index, text.data(), text.size() + 1);
    return text;
}

std::vector<Allowance> AllowancesOf(const std::string& rules, const RuleKind& kind) {
    std::vector<Allowance> allowances;
    for (const std::string_view line : Split(rules, '\n')) {
        const std::vector<std::string_view> columns = Split(line, '\t');
        if (columns.size() != 4 || columns[0] != kind.name) continue;
        std::string what = columns[1] == "*" ? kind.any : NameOf(columns[1]);
        if (!columns[2].empty()) what.append(", modality ").append(columns[2]);
        const bool isNew = allowances.empty() || allowances.back().what != what;
        if (isNew) allowances.push_back({what, {}});
        allowances.back().transferSyntaxes.push_back(columns[3] == "*" ? "any transfer syntax"
                                                                       : NameOf(columns[3]));
    }
    return allowances;
}

void PrintProfile(const Arguments& names, int32_t index) {
    const std::string rules = RulesOf(index);
    std::printf("%s\n", names[static_cast<size_t>(index)].c_str());
    if (rules.empty()) std::printf("    nothing\n");
    for (const RuleKind& kind : kRuleKinds) {
        for (const Allowance& allowed : AllowancesOf(rules, kind)) {
            std::printf("    %s: %s: %s\n", kind.label, allowed.what.c_str(),
                        Joined(allowed.transferSyntaxes, "; ").c_str());
        }
    }
}

struct ProfilesRequest {
    Arguments names;
    bool namesOnly = false;
};

int PrintProfiles(const ProfilesRequest& request) {
    for (const std::string& name : request.names) {
        const std::string complaint = ComplaintAboutProfile(name);
        if (name.empty()) return Misuse(kProfilesCommand, "the name of a profile is expected");
        if (!complaint.empty()) return Misuse(kProfilesCommand, complaint);
    }
    const Arguments all = ProfileNames();
    for (int32_t i = 0; i < pgxProfileCount(); ++i) {
        const std::string& name = all[static_cast<size_t>(i)];
        const bool isWanted =
            request.names.empty() ||
            std::find(request.names.begin(), request.names.end(), name) != request.names.end();
        if (!isWanted) continue;
        if (request.namesOnly) {
            std::printf("%s\n", name.c_str());
        } else {
            PrintProfile(all, i);
        }
    }
    return kDone;
}

Work DefineProfiles(OptionSet& options) {
    const auto request = std::make_shared<ProfilesRequest>();
    options.Operands(&request->names, 0, kAnyNumber, "");
    options.Switch("--names", &request->namesOnly, "print the names alone, one on each line");
    return [request] { return PrintProfiles(*request); };
}

}  // namespace

const Command kProfilesCommand = {
    "profiles", "profiles [NAME...] [--names]", "list the media application profiles",
    "Prints the names that --profile of mkdir and check takes, each with what the profile\n"
    "allows below it: SOP classes with their transfer syntaxes, of images and of other\n"
    "objects, and the photometric interpretations that images may have where not all may.\n"
    "With names only these.\n",
    DefineProfiles};

}  // namespace pgtool
