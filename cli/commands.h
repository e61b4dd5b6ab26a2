#pragma once

#include "cli/changing_options.h"
#include "cli/report.h"

namespace cli {

// Each command does its work and says what came of it. @throws Error when it ends before its aim.

[[nodiscard]] Report run_readers(const CommonOptions& options);
[[nodiscard]] Report run_doctor(const DoctorOptions& options);
[[nodiscard]] Report run_status(const StatusOptions& options);
[[nodiscard]] Report run_list(const ListOptions& options);
[[nodiscard]] Report run_remind(const RemindOptions& options);
[[nodiscard]] Report run_free_id(const CardOptions& options);
[[nodiscard]] Report run_request(const RequestOptions& options);
[[nodiscard]] Report run_renew(const RenewOptions& options);
[[nodiscard]] Report run_pending(const CardOptions& options);
[[nodiscard]] Report run_discard(const DiscardOptions& options);
[[nodiscard]] Report run_remove(const RemoveOptions& options);
[[nodiscard]] Report run_rehearse(const RehearseOptions& options);
[[nodiscard]] Report run_install(const InstallOptions& options);

} // namespace cli
