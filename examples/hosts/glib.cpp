#include "examples/hosts/Counting.h"

#include <chrono>

#include <glib.h>

namespace {

// A source that makes a pass when the descriptor wants one, or the time has come.
gboolean makePass(GSource* source, GSourceFunc /*callback*/, gpointer /*data*/) {
  const auto due = NSRunLoop::mainRunLoop()->performPass();
  g_source_set_ready_time(
      source, due ? g_get_monotonic_time() + ceil<std::chrono::microseconds>(*due).count() : -1);
  return G_SOURCE_CONTINUE;
}

void attachMainRunLoop() {
  static GSourceFuncs functions{nullptr, nullptr, makePass, nullptr, nullptr, nullptr};
  GSource* const source = g_source_new(&functions, sizeof(GSource));
  g_source_add_unix_fd(source, NSRunLoop::mainRunLoop()->wakeUpDescriptor(), G_IO_IN);
  g_source_set_ready_time(source, 0);
  // In a main loop within a block, too.
  g_source_set_can_recurse(source, TRUE);
  g_source_attach(source, nullptr);
  g_source_unref(source);
}

}  // namespace

int main() {
  GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
  attachMainRunLoop();
  NSMake<Counting>([loop] { g_main_loop_quit(loop); })->start();
  g_main_loop_run(loop);
  g_main_loop_unref(loop);
}
