// A plug-in for QEMU's user emulation: counts the instructions that a program runs from one mark to
// the next, and prints the count where the program writes its own output. A mark is a call of
// prctl(2) with an option that the kernel does not have; mark.h has its number.
//
//   c++ -shared -fPIC -o libcounter.so counter.cpp

#include <unistd.h>

#include <cinttypes>
#include <cstdint>
#include <cstdio>

#include "mark.h"

// Of QEMU's interface, version 1, what is used here: Debian packages no header of it.
extern "C" {
struct qemu_plugin_tb;
struct qemu_info_t;
using qemu_plugin_id_t = uint64_t;
constexpr int QEMU_PLUGIN_INLINE_ADD_U64 = 0;

size_t qemu_plugin_tb_n_insns(const qemu_plugin_tb* block);
void qemu_plugin_register_vcpu_tb_exec_inline(qemu_plugin_tb* block, int op, void* counter,
                                              uint64_t added);
void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id,
                                           void (*translated)(qemu_plugin_id_t, qemu_plugin_tb*));
void qemu_plugin_register_vcpu_syscall_cb(qemu_plugin_id_t id,
                                          void (*called)(qemu_plugin_id_t, unsigned, int64_t number,
                                                         uint64_t, uint64_t, uint64_t, uint64_t,
                                                         uint64_t, uint64_t, uint64_t, uint64_t));

__attribute__((visibility("default"))) int qemu_plugin_version = 1;
}

namespace {

uint64_t instructions, atMark;

void Count(qemu_plugin_id_t, qemu_plugin_tb* block) {
  qemu_plugin_register_vcpu_tb_exec_inline(block, QEMU_PLUGIN_INLINE_ADD_U64, &instructions,
                                           qemu_plugin_tb_n_insns(block));
}

void LookForMark(qemu_plugin_id_t, unsigned, int64_t, uint64_t option, uint64_t isEnd, uint64_t,
                 uint64_t, uint64_t, uint64_t, uint64_t, uint64_t) {
  if (option != ZIRK::bench::kMark) return;
  if (isEnd) dprintf(STDOUT_FILENO, "%" PRIu64 "\n", instructions - atMark);
  atMark = instructions;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int qemu_plugin_install(qemu_plugin_id_t id,
                                                                          const qemu_info_t*, int,
                                                                          char**) {
  qemu_plugin_register_vcpu_tb_trans_cb(id, Count);
  qemu_plugin_register_vcpu_syscall_cb(id, LookForMark);
  return 0;
}
