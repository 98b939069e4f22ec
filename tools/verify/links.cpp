#include "verify/links.h"

#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tags.h"

namespace pgtool {

namespace {

// In the order in which they are followed: what is below a record belongs to it.
constexpr std::array<pgkit::tag, 3> kLinks = {tags::kLowerRecord, tags::kNextRecord,
                                              tags::kSharedRecord};

// Where a link stands: in a record, by its index, or in the head of the directory.
struct Source {
    size_t record = kNoRecord;
    pgkit::tag tag;
};

class LinkWalk {
  public:
    LinkWalk(Directory& directory, Findings& findings)
        : directory_(directory),
          findings_(findings),
          isVisited_(directory.Records().size()),
          isOpen_(directory.Records().size()) {}

    void Run() {
        const std::optional<size_t> first =
            Target({kNoRecord, tags::kFirstRecord}, OffsetIn(tags::kFirstRecord));
        if (first) Walk(*first);
        CheckLast(first);
        for (size_t i = 0; i < directory_.Records().size(); ++i) {
            DirectoryRecord& record = directory_.Records()[i];
            record.isReached = isVisited_[i];
            if (!record.isReached && record.isInUse) {
                Note({i, {}}, FindingKind::Unreached, "no link leads to it");
            }
            CheckFlag(i);
        }
        WalkOthers();
    }

  private:
    // A record whose links are followed one after the other. It is open until all behind it is
    // done: whatever leads to an open record closes a circle.
    struct Visit {
        size_t record;
        size_t nextLink;
    };

    void Walk(size_t first) {
        std::vector<Visit> visits;
        Enter(visits, first, kNoRecord);
        while (!visits.empty()) {
            Visit& visit = visits.back();
            if (visit.nextLink == kLinks.size()) {
                isOpen_[visit.record] = false;
                visits.pop_back();
                continue;
            }
            const pgkit::tag link = kLinks[visit.nextLink++];
            const size_t record = visit.record;
            const std::optional<size_t> target = Target({record, link}, OffsetIn(record, link));
            if (!target) continue;
            const bool isBelow = link == tags::kLowerRecord;
            Enter(visits, *target, isBelow ? record : directory_.Records()[record].parent);
        }
    }

    void Enter(std::vector<Visit>& visits, size_t record, size_t parent) {
        isVisited_[record] = true;
        directory_.Records()[record].parent = parent;
        isOpen_[record] = true;
        visits.push_back({record, 0});
    }

    // The links among the records that nothing leads to from the root: first from those that none
    // of the others leads to either, then around the circles that are left.
    void WalkOthers() {
        const std::vector<DirectoryRecord>& records = directory_.Records();
        const auto isOther = [&](size_t i) { return !isVisited_[i] && records[i].isInUse; };
        std::vector<bool> isLedTo(records.size());
        for (size_t i = 0; i < records.size(); ++i) {
            if (!isOther(i)) continue;
            for (const pgkit::tag link : kLinks) {
                const size_t target = directory_.FindOffset(OffsetIn(i, link));
                if (target != kNoRecord) isLedTo[target] = true;
            }
        }
        for (size_t i = 0; i < records.size(); ++i)
            if (isOther(i) && !isLedTo[i]) Walk(i);
        for (size_t i = 0; i < records.size(); ++i)
            if (isOther(i)) Walk(i);
    }

    uint32_t OffsetIn(pgkit::tag tag) const {
        return directory_.Root().find(tag).number<uint32_t>().value_or(0);
    }
    uint32_t OffsetIn(size_t record, pgkit::tag tag) const {
        const pgkit::element element = directory_.Records()[record].item.find(tag);
        return element.number<uint32_t>().value_or(0);
    }

    // The record that a link leads to, when it is one that nothing has led to before.
    std::optional<size_t> Target(const Source& source, uint32_t offset) {
        if (offset == 0) return std::nullopt;
        const size_t target = directory_.FindOffset(offset);
        if (target == kNoRecord) {
            Note(source, FindingKind::Link,
                 NameOf(source.tag) + " is " + std::to_string(offset) + Where(offset));
            return std::nullopt;
        }
        if (!isVisited_[target]) return target;
        // Records of files that several refer to are there to be shared.
        if (source.tag == tags::kSharedRecord) return std::nullopt;
        const std::string leads =
            NameOf(source.tag) + " leads to record " + std::to_string(target + 1);
        if (isOpen_[target]) {
            Note(source, FindingKind::Circle, leads + ", from which it comes");
        } else {
            Note(source, FindingKind::SharedRecord, leads + ", to which another one leads, too");
        }
        return std::nullopt;
    }

    std::string Where(uint32_t offset) const {
        const auto& records = directory_.Records();
        const uint64_t last = records.empty() ? 0 : records.back().offset;
        return offset > last ? ", behind the last record" : ", where no record begins";
    }

    // The last record of the root, unless its chain breaks off.
    std::optional<size_t> LastOfRoot(std::optional<size_t> record) const {
        size_t left = directory_.Records().size();
        while (record && left-- > 0) {
            const uint32_t offset = OffsetIn(*record, tags::kNextRecord);
            if (offset == 0) return record;
            const size_t next = directory_.FindOffset(offset);
            if (next == kNoRecord) return std::nullopt;
            record = next;
        }
        return std::nullopt;
    }

    void CheckLast(const std::optional<size_t>& first) {
        const uint32_t offset = OffsetIn(tags::kLastRecord);
        const Source source = {kNoRecord, tags::kLastRecord};
        const std::string name = NameOf(tags::kLastRecord);
        const size_t target = directory_.FindOffset(offset);
        if (offset != 0 && target == kNoRecord) {
            Note(source, FindingKind::Link, name + " is " + std::to_string(offset) + Where(offset));
            return;
        }
        // Many writers mean the last record of all, and nobody is misled by that.
        if (target + 1 == directory_.Records().size()) return;
        const std::optional<size_t> last = LastOfRoot(first);
        if (!last || target == *last) return;
        const std::string leads =
            offset == 0 ? " leads nowhere" : " leads to record " + std::to_string(target + 1);
        Note(
            source, FindingKind::LastRecord,
            name + leads + ", but the last one of the root is record " + std::to_string(*last + 1));
    }

    // Missing flags are found with the other keys.
    void CheckFlag(size_t record) {
        const auto flag =
            directory_.Records()[record].item.find(tags::kInUseFlag).number<uint32_t>();
        if (!flag || *flag == 0 || *flag == 0xFFFF) return;
        Note({record, tags::kInUseFlag}, FindingKind::InUseFlag,
             NameOf(tags::kInUseFlag) + " is " + std::to_string(*flag) + ", neither 0 nor 65535");
    }

    void Note(const Source& source, FindingKind kind, std::string message) {
        if (source.record == kNoRecord) {
            findings_.Add(AboutDirectory(kind, std::move(message)));
        } else {
            findings_.Add(directory_.About(source.record, kind, std::move(message)));
        }
    }

    Directory& directory_;
    Findings& findings_;
    std::vector<bool> isVisited_;
    std::vector<bool> isOpen_;
};

}  // namespace

void CheckLinks(Directory& directory, Findings& findings) { LinkWalk(directory, findings).Run(); }

}  // namespace pgtool
