#pragma once
#include <sys/types.h>

#include <cstdint>

// What the kernel of macOS tells about a process, laid out as there.
#define PROC_UID_ONLY 4
#define PROC_PIDTBSDINFO 3
#define PROC_PIDPATHINFO_MAXSIZE 4096

struct proc_bsdinfo {
  std::uint32_t pbi_flags;
  std::uint32_t pbi_status;
  std::uint32_t pbi_xstatus;
  std::uint32_t pbi_pid;
  std::uint32_t pbi_ppid;
  uid_t pbi_uid;
  gid_t pbi_gid;
  uid_t pbi_ruid;
  gid_t pbi_rgid;
  uid_t pbi_svuid;
  gid_t pbi_svgid;
  std::uint32_t rfu_1;
  char pbi_comm[16];
  char pbi_name[32];
  std::uint32_t pbi_nfiles;
  std::uint32_t pbi_pgid;
  std::uint32_t pbi_pjobc;
  std::uint32_t e_tdev;
  std::uint32_t e_tpgid;
  std::int32_t pbi_nice;
  std::uint64_t pbi_start_tvsec;
  std::uint64_t pbi_start_tvusec;
};
