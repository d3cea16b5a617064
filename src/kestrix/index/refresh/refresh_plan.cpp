#include "kestrix/index/refresh/refresh_plan.h"

#include <algorithm>
#include <utility>

namespace kestrix::index {

RefreshPlan plan_refresh(std::vector<FileRow> known, std::span<const WalkedFile> found) {
  RefreshPlan plan;
  for (const FileRow& row : known) plan.next_id = std::max(plan.next_id, row.id + 1);
  auto row = known.begin();
  for (const WalkedFile& file : found) {
    for (; row != known.end() && row->path < file.path; ++row) plan.gone.push_back(std::move(*row));
    if (row == known.end() || row->path != file.path) {
      plan.tasks.push_back({file.path, {}});
      continue;
    }
    if (row->stamp == file.stamp)
      plan.kept.push_back(std::move(*row));
    else
      plan.tasks.push_back({file.path, std::move(*row)});
    ++row;
  }
  std::move(row, known.end(), std::back_inserter(plan.gone));
  return plan;
}

}  // namespace kestrix::index
