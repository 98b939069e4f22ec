#include "disc/partition.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "disc/size.h"
#include "disc/web_limits.h"

namespace pgtool {

namespace {

// What a medium takes before the first file: the descriptors and tables of its file system, the
// texts at its root, and the head of its DICOMDIR.
constexpr uint64_t kMediumCost = uint64_t{40} * kSector;
// The directory of a series, and those above it.
constexpr uint64_t kFolderCost = 2 * kSector;
// The record of an instance, its share of those above it, and its name in the directory.
constexpr uint64_t kRecordCost = kSector;
// A page for web browsers.
constexpr uint64_t kPageCost = 4 * kSector;

// What instances take together, as they are added one by one.
class Cost {
  public:
    Cost(const Catalogue& catalogue, const DiscRequest& request)
        : catalogue_(catalogue), request_(request) {}

    uint64_t Add(size_t index) {
        const DiscInstance& instance = catalogue_.Instances()[index];
        total_ += InSectors(instance.bytes) + kRecordCost;
        // Explicit headers may be longer, by four bytes for each element.
        if (instance.transfer != Transfer::Copied) total_ += instance.bytes / 2 + kSector;
        const auto [images, isNew] = images_.try_emplace(instance.series, 0);
        if (isNew) total_ += kFolderCost + (request_.hasWeb ? kPageCost + kFolderCost : 0);
        if (instance.isImage) {
            ++images->second;
            total_ += uint64_t{request_.iconSize} * request_.iconSize;
            const bool hasPicture = request_.hasWeb && images->second <= kMaxThumbnails;
            if (hasPicture) total_ += InSectors(kMaxThumbnailBytes);
        } else {
            // Records and pages repeat what documents say.
            total_ += instance.bytes;
            if (request_.hasWeb) total_ += InSectors(2 * instance.bytes) + kPageCost;
        }
        return total_;
    }

    uint64_t Add(const std::vector<size_t>& instances) {
        for (const size_t instance : instances)
            Add(instance);
        return total_;
    }

  private:
    const Catalogue& catalogue_;
    const DiscRequest& request_;
    std::map<size_t, uint64_t> images_;  // of each series
    uint64_t total_ = 0;
};

class Divider {
  public:
    Divider(const Catalogue& catalogue, const DiscRequest& request)
        : catalogue_(catalogue),
          request_(request),
          room_(request.size > kMediumCost ? request.size - kMediumCost : 0) {}

    void PlaceStudy(const DiscStudy& study) {
        std::vector<size_t> instances;
        for (const size_t series : study.series) {
            const std::vector<size_t>& some = catalogue_.Series()[series].instances;
            instances.insert(instances.end(), some.begin(), some.end());
        }
        if (Place(instances)) return;
        for (const size_t series : study.series)
            PlaceSeries(catalogue_.Series()[series].instances);
    }

    // As many instances at a time as a medium holds.
    void PlaceSeries(const std::vector<size_t>& series) {
        if (Place(series)) return;
        std::vector<size_t> part;
        std::optional<Cost> cost;
        for (const size_t instance : series) {
            if (Cost(catalogue_, request_).Add(instance) > room_) {
                partition_.tooLarge.push_back(instance);
                continue;
            }
            if (!cost) cost.emplace(catalogue_, request_);
            if (cost->Add(instance) > room_) {
                Place(part);
                part.clear();
                cost.emplace(catalogue_, request_).Add(instance);
            }
            part.push_back(instance);
        }
        if (!part.empty()) Place(part);
    }

    Partition Result() && {
        for (MediumPlan& medium : partition_.media)
            std::sort(medium.instances.begin(), medium.instances.end());
        return std::move(partition_);
    }

  private:
    // False for what is larger than a medium.
    bool Place(const std::vector<size_t>& instances) {
        const uint64_t cost = Cost(catalogue_, request_).Add(instances);
        if (request_.size != 0 && cost > room_) return false;
        std::vector<MediumPlan>& media = partition_.media;
        const auto hasRoom = [&](const MediumPlan& medium) {
            return request_.size == 0 || medium.cost - kMediumCost + cost <= room_;
        };
        auto medium = std::find_if(media.begin(), media.end(), hasRoom);
        if (medium == media.end()) medium = media.insert(media.end(), {{}, kMediumCost});
        medium->instances.insert(medium->instances.end(), instances.begin(), instances.end());
        medium->cost += cost;
        return true;
    }

    const Catalogue& catalogue_;
    const DiscRequest& request_;
    uint64_t room_;
    Partition partition_;
};

}  // namespace

Partition Divide(const Catalogue& catalogue, const DiscRequest& request) {
    Divider divider(catalogue, request);
    for (const DiscStudy& study : catalogue.Studies())
        divider.PlaceStudy(study);
    if (!catalogue.Common().empty()) divider.PlaceSeries(catalogue.Common());
    return std::move(divider).Result();
}

}  // namespace pgtool
