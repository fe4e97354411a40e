#include <rasterkit/placement/side_files.h>

// Stand-in until side files are written.

namespace rasterkit {

struct SideFiles::State {
  std::vector<std::string> plans;
};
SideFiles::SideFiles(const SideFileWish&, const Placement&, Changes&)
    : state_(std::make_unique<State>()) {}
SideFiles::~SideFiles() = default;
SideFiles::SideFiles(SideFiles&&) noexcept = default;
const std::vector<std::string>& SideFiles::Plans() const { return state_->plans; }
void SideFiles::Prepare() {}
void SideFiles::BeforeCommit() {}
void SideFiles::AfterCommit() {}

}  // namespace rasterkit
