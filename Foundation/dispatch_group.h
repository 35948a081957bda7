#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <utility>
#include <vector>

#include <Foundation/dispatch.h>

/// Counts work that is under way, on whatever threads, and tells when none is left. It may be used
/// again and again. From any thread.
class NS_EXPORT dispatch_group : public NSObject {
 public:
  // What the functions below do.
  void enter();
  void leave();
  void notify(const dispatch_queue_t& queue, NSOnceClosure work);
  void wait();
  bool wait(NSDelay delay, const NSRef<NSManualClock>& clock);

 private:
  struct Notice {
    dispatch_queue_t queue;
    NSOnceClosure work;
  };

  std::mutex _mutex;
  std::condition_variable _isEmpty;
  std::size_t _count = 0;
  // How often it has become empty.
  std::size_t _emptied = 0;
  std::vector<Notice> _notices;
};

using dispatch_group_t = NSRef<dispatch_group>;

/// Makes a group of nothing yet.
[[nodiscard]] NS_EXPORT dispatch_group_t dispatch_group_create();

/// Counts one more. A nil group raises `NSInvalidArgumentException`.
inline void dispatch_group_enter(const dispatch_group_t& group) { group->enter(); }
/// Counts one less. A call without its `dispatch_group_enter` raises
/// `NSInternalInconsistencyException`.
inline void dispatch_group_leave(const dispatch_group_t& group) { group->leave(); }

/// Submits the block to the queue, once, as soon as the group is empty: at once when it is. A nil
/// group, queue or block raises `NSInvalidArgumentException`.
template <class F>
void dispatch_group_notify(const dispatch_group_t& group, const dispatch_queue_t& queue,
                           F&& block) {
  if (!queue) NSRaiseNilArgument("queue", "dispatch_group_notify");
  if (NSIsNilCallable(block)) NSRaiseNilArgument("block", "dispatch_group_notify");
  group->notify(queue, NSOnceClosure(std::forward<F>(block)));
}

/// Returns when the group is empty, or has been since the call.
inline void dispatch_group_wait(const dispatch_group_t& group) { group->wait(); }
/// Returns then too, or after the delay, by that clock; nil is the system's. Whether the group is
/// empty, or has been.
[[nodiscard]] inline bool dispatch_group_wait(const dispatch_group_t& group, NSDelay delay,
                                              const NSRef<NSManualClock>& clock = nullptr) {
  return group->wait(delay, clock);
}

/// A block that counts in a group until it has run and let go of what it holds, or was dropped.
template <class F>
class NSGroupWork {
 public:
  template <class G>
  NSGroupWork(dispatch_group_t group, G&& block)
      : _member(std::move(group)), _block(std::forward<G>(block)) {}
  void operator()() { _block(); }

 private:
  struct Member {
    explicit Member(dispatch_group_t entered) : group(std::move(entered)) { group->enter(); }
    Member(Member&& other) noexcept : group(std::move(other.group)) {}
    ~Member() {
      if (group) group->leave();
    }
    dispatch_group_t group;
  };
  Member _member;
  F _block;
};

/// Submits the block as `dispatch_async` does; it counts in the group until it has run.
template <class F>
void dispatch_group_async(const dispatch_group_t& group, const dispatch_queue_t& queue, F&& block) {
  if (NSIsNilCallable(block)) NSRaiseNilArgument("block", "dispatch_group_async");
  dispatch_async(queue, NSGroupWork<std::decay_t<F>>(group, std::forward<F>(block)));
}
