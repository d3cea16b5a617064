#include "kestrix/index/refresh_plan.h"

namespace kestrix::index {

RefreshPlan plan_refresh(std::span<const FileRow> known, std::span<const WalkedFile> found) {
  RefreshPlan plan;
  auto row = known.begin();
  for (const WalkedFile& file : found) {
    for (; row != known.end() && row->path < file.path; ++row) plan.gone.push_back(&*row);
    const bool is_known = row != known.end() && row->path == file.path;
    if (!is_known) {
      plan.tasks.push_back({file.path});
    } else {
      if (row->stamp == file.stamp)
        ++plan.unchanged;
      else
        plan.tasks.push_back({file.path, &*row});
      ++row;
    }
  }
  for (; row != known.end(); ++row) plan.gone.push_back(&*row);
  return plan;
}

}  // namespace kestrix::index
