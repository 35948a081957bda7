#include "tests/RunLoops.h"

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

const auto changed = u"Changed"_ns;
const auto closed = u"Closed"_ns;

// Notes what the default centre posts while it lives.
class Witness {
 public:
  Witness() = default;
  Witness(const Witness&) = delete;
  ~Witness() { NSNotificationCenter::defaultCenter()->removeObserver(_observer); }
  std::vector<NSRef<NSNotification>> taken() { return std::exchange(_posted, {}); }
  std::string names() {
    std::string result;
    for (const auto& notification : taken()) result += notification->name()->utf8() + " ";
    return result;
  }

 private:
  std::vector<NSRef<NSNotification>> _posted;
  NSRef<NSObject> _observer =
      NSNotificationCenter::defaultCenter()->addObserverForName_object_queue_usingBlock(
          nullptr, nullptr, nullptr,
          [this](const NSRef<NSNotification>& notification) { _posted.push_back(notification); });
};

NSRef<NSNotification> about(const NSRef<NSString>& name, const NSRef<NSObject>& object = nullptr) {
  return NSNotification::notificationWithName_object(name, object);
}

TEST(NSNotificationCenter, CallsThoseWhoAskedForIt) {
  const auto centre = NSMake<NSNotificationCenter>();
  const NSRef<NSObject> a = u"same"_ns;
  const NSRef<NSObject> b = NSMake<NSString>("same");
  std::string calls;
  const auto observe = [&](char sign, const NSRef<NSString>& name, const NSRef<NSObject>& object) {
    return centre->addObserverForName_object_queue_usingBlock(name, object, nullptr,
                                                              [&, sign] { calls += sign; });
  };
  const auto all = observe('*', nullptr, nullptr);
  const auto changedA = observe('1', changed, a);
  const auto anyA = observe('2', nullptr, a);
  const auto anyChanged = observe('3', NSMake<NSString>("Changed"), nullptr);
  const auto changedAgain = observe('4', changed, a);
  const auto expectCalls = [&](const Rows<NSRef<NSString>, NSRef<NSObject>, std::string>& rows) {
    for (const auto& [name, object, expected] : rows) {
      centre->postNotificationName_object(name, object);
      EXPECT_EQ(std::exchange(calls, ""), expected);
    }
  };
  expectCalls({{changed, a, "*1234"},
               {changed, b, "*3"},
               {changed, nullptr, "*3"},
               {closed, a, "*2"},
               {closed, b, "*"},
               {closed, nullptr, "*"}});
  centre->removeObserver(changedA);
  centre->removeObserver(changedA);
  centre->removeObserver(nullptr);
  centre->removeObserver(a);
  NSMake<NSNotificationCenter>()->removeObserver(all);
  expectCalls({{changed, a, "*234"}});
  // The user information arrives; who is removed meanwhile is not called, who is added neither.
  const auto info = NSMake<NSDictionary>({{u"key"_ns, a}});
  const auto meddler = centre->addObserverForName_object_queue_usingBlock(
      closed, nullptr, nullptr, [&](NSNotification& notification) {
        EXPECT_TRUE(notification.userInfo()->isEqual(info));
        centre->removeObserver(all);
        (void)observe('5', closed, nullptr);
        NSException::raise(NSGenericException, "thrown");
      });
  EXPECT_THROW(centre->postNotificationName_object_userInfo(closed, nullptr, info), NSException);
  EXPECT_EQ(std::exchange(calls, ""), "*");
  centre->removeObserver(meddler);
  expectCalls({{closed, nullptr, "5"}});
  refusesNil("notification", "postNotification:", [&] { centre->postNotification(nullptr); });
  refusesNil("block", "addObserverForName:object:queue:usingBlock:", [&] {
    centre->addObserverForName_object_queue_usingBlock(changed, a, nullptr, nullptr);
  });
}

TEST(NSNotificationCenter, KeepsTheOrderOfThoseWhoStay) {
  const auto centre = NSMake<NSNotificationCenter>();
  std::vector<int> calls;
  std::vector<NSRef<NSObject>> observers;
  const auto add = [&](int number) {
    observers.push_back(centre->addObserverForName_object_queue_usingBlock(
        changed, nullptr, nullptr, [&, number] { calls.push_back(number); }));
  };
  for (int k = 0; k < 100; ++k) add(k);
  for (std::size_t k = 0; k < 100; ++k) {
    if (k % 10 != 0) centre->removeObserver(observers[k]);
  }
  add(100);
  centre->postNotification(about(changed));
  EXPECT_EQ(calls, (std::vector{0, 10, 20, 30, 40, 50, 60, 70, 80, 90, 100}));
  // Those who have gone, too.
  for (const auto& observer : observers) centre->removeObserver(observer);
  centre->postNotification(about(changed));
  EXPECT_EQ(calls.size(), 11U);
}

TEST(NSNotificationCenter, HoldsAndLetsGo) {
  int alive = 0;
  auto centre = NSMake<NSNotificationCenter>();
  const auto add = [&](const NSRef<NSOperationQueue>& queue) {
    return centre->addObserverForName_object_queue_usingBlock(
        changed, NSMake<Counted>(alive), queue, [held = NSMake<Counted>(alive)] {});
  };
  auto observer = add(nullptr);
  EXPECT_EQ(alive, 2);
  centre->removeObserver(observer);
  EXPECT_EQ(alive, 0);
  // On the main queue later, unless it is removed before.
  int calls = 0;
  const auto count = [&] { ++calls; };
  const auto main = NSOperationQueue::mainQueue();
  const auto kept =
      centre->addObserverForName_object_queue_usingBlock(closed, nullptr, main, count);
  const auto lost =
      centre->addObserverForName_object_queue_usingBlock(closed, nullptr, main, count);
  centre->postNotification(about(closed));
  centre->removeObserver(lost);
  EXPECT_EQ(calls, 0);
  makePass();
  EXPECT_EQ(calls, 1);
  observer = add(nullptr);
  // It stays until the post is over.
  centre->addObserverForName_object_queue_usingBlock(changed, nullptr, nullptr, [&] {
    const NSWeakRef weak = std::exchange(centre, nullptr);
    EXPECT_FALSE(weak.isNil());
  });
  centre->postNotification(about(changed));
  observer = nullptr;
  EXPECT_EQ(alive, 0);
}

TEST(NSNotificationCenter, MayBeUsedByWhatItLetsGo) {
  struct Name : NSString {
    Name() : NSString("Changed") {}
    Name(const Name&) = delete;
    ~Name() override { NSNotificationCenter::defaultCenter()->postNotification(about(closed)); }
    NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override { return self(); }
  };
  Witness witness;
  // The second one's name is the first one's in the centre.
  NSObservation first(NSMake<Name>(), nullptr, [] {});
  NSObservation second(changed, nullptr, [] {});
  first.remove();
  second.remove();
  EXPECT_EQ(witness.names(), "Closed ");
}

TEST(NSNotificationCenter, HoldsNoTargets) {
  int alive = 0;
  const auto centre = NSMake<NSNotificationCenter>();
  std::vector<NSRef<NSNotification>> posted;
  int calls = 0;
  auto target = NSMake<Counted>(alive);
  const auto add = [&](const NSRef<NSOperationQueue>& queue, auto block) {
    return centre->addObserverForTarget_name_object_queue_usingBlock(
        NSWeakRef(target), changed, nullptr, queue, std::move(block));
  };
  add(nullptr,
      [&, held = NSMake<Counted>(alive)](Counted& self, const NSRef<NSNotification>& notification) {
        EXPECT_EQ(&self, target.get());
        posted.push_back(notification);
      });
  const auto removed = add(nullptr, [&] { calls += alive; });
  add(NSOperationQueue::mainQueue(), [&](const NSRef<Counted>& self) { calls += self->alive; });
  const auto notification = about(changed);
  centre->postNotification(notification);
  centre->removeObserver(removed);
  EXPECT_EQ(calls, 2);
  makePass();
  EXPECT_EQ(calls, 4);
  centre->postNotification(notification);
  EXPECT_EQ(posted, (std::vector{notification, notification}));
  // What waits in a queue is dropped; the next post lets go of what the block has.
  target = nullptr;
  makePass();
  EXPECT_EQ(alive, 1);
  centre->postNotification(notification);
  EXPECT_EQ(alive, 0);
  EXPECT_EQ(calls, 4);
  refusesNil("block", "addObserverForTarget:name:object:queue:usingBlock:", [&] {
    add(nullptr, std::function<void(Counted&)>());
  });
}

TEST(NSObservation, RemovesItsObserver) {
  auto centre = NSMake<NSNotificationCenter>();
  std::string calls;
  const auto observe = [&](char sign) {
    return NSObservation(centre, centre->addObserverForName_object_queue_usingBlock(
                                     changed, nullptr, nullptr, [&, sign] { calls += sign; }));
  };
  const auto expectCalls = [&](const std::string& expected) {
    centre->postNotification(about(changed));
    EXPECT_EQ(std::exchange(calls, ""), expected);
  };
  auto first = observe('1');
  {
    const auto second = observe('2');
    (void)observe('3').detach();
    expectCalls("123");
  }
  auto moved = std::move(first);
  expectCalls("13");
  moved = observe('4');
  expectCalls("34");
  moved.remove();
  moved.remove();
  expectCalls("3");
  // In the default centre.
  {
    const NSObservation observation(
        changed, centre, [&](NSNotification& it) { calls += it.object().is(centre) ? 'd' : '?'; });
    for (const auto& object : {centre, NSNotificationCenter::defaultCenter()}) {
      NSNotificationCenter::defaultCenter()->postNotificationName_object(changed, object);
    }
  }
  expectCalls("d3");
  // It may outlive its centre.
  moved = observe('5');
  EXPECT_EQ(centre->retainCount(), 1U);
  centre = nullptr;
}

TEST(NSNotificationQueue, PostsAtItsOccasions) {
  const auto centre = NSNotificationCenter::defaultCenter();
  const auto observe = [&](const NSRef<NSString>& name, const auto& block) {
    return centre->addObserverForName_object_queue_usingBlock(name, nullptr, nullptr, block);
  };
  Witness witness;
  const auto loop = NSRunLoop::currentRunLoop();
  const auto queue = NSNotificationQueue::defaultQueue();
  const auto enqueue = [&](const NSRef<NSString>& name, NSPostingStyle style) {
    enqueueNotificationName_object_postingStyle(queue, name, nullptr, style);
  };
  enqueue(u"idle"_ns, NSPostWhenIdle);
  enqueue(u"soon"_ns, NSPostASAP);
  enqueue(u"now"_ns, NSPostNow);
  EXPECT_EQ(witness.names(), "now ");
  // At the end of the pass; what is queued by an observer waits for the next one.
  const auto observer = observe(u"soon"_ns, [&] { enqueue(u"next"_ns, NSPostASAP); });
  loop->performBlock([&] { EXPECT_EQ(witness.names(), ""); });
  firePendingNotifications(queue);
  EXPECT_EQ(witness.names(), "soon ");
  firePendingNotifications(queue);
  EXPECT_EQ(witness.names(), "next ");
  // Idle ones before it waits, not as long as there is something to do.
  enqueue(u"soon"_ns, NSPostASAP);
  EXPECT_EQ(loop->performPass(), std::chrono::nanoseconds::zero());
  EXPECT_EQ(witness.names(), "soon ");
  EXPECT_EQ(loop->performPass(), std::chrono::nanoseconds::zero());
  EXPECT_EQ(witness.names(), "next idle ");
  EXPECT_EQ(loop->performPass(), std::nullopt);
  enqueue(u"idle"_ns, NSPostWhenIdle);
  const auto stopping = observe(u"idle"_ns, [&] { loop->stop(); });
  loop->run();
  EXPECT_EQ(witness.names(), "idle ");
  centre->removeObserver(observer);
  centre->removeObserver(stopping);

  // Idle work that asks for more of it, and a delayed request that comes first.
  int left = 3;
  const auto working = observe(u"work"_ns, [&](const NSRef<NSNotification>& notification) {
    if (--left > 0) queue->enqueueNotification_postingStyle(notification, NSPostWhenIdle);
  });
  enqueue(u"work"_ns, NSPostWhenIdle);
  loop->performBlock([&] {
    performBlock_afterDelay(
        queue, [&] { EXPECT_EQ(left, 3); }, 0);
  });
  EXPECT_EQ(loop->performPass(), std::chrono::nanoseconds::zero());
  EXPECT_EQ(left, 3);
  while (loop->performPass()) {
  }
  EXPECT_EQ(left, 0);
  centre->removeObserver(working);
}

TEST(NSNotificationQueue, CoalescesAsAListWould) {
  const std::array<NSRef<NSString>, 2> names{changed, closed};
  const std::array<NSRef<NSObject>, 3> senders{nullptr, u"a"_ns, u"b"_ns};
  const std::array<NSRef<NSString>, 2> modes{NSDefaultRunLoopMode(), u"tracking"_ns};
  struct Waiting {
    NSRef<NSNotification> notification;
    bool isIdle;
    std::size_t mode;
  };
  expectProperty("a queue of notifications", [&] {
    Witness witness;
    const auto queue = NSNotificationQueue::defaultQueue();
    std::vector<Waiting> model;
    for (const int step : *rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 1 << 12))) {
      const auto bits = [&](int shift, int count) {
        return static_cast<std::size_t>((step >> shift) % count);
      };
      const auto mask = static_cast<std::uint32_t>(bits(0, 4));
      const std::size_t mode = bits(8, 2);
      const auto notification =
          about(NSMake<NSString>(names[bits(2, 2)]->view()), senders[bits(3, 3)]);
      const std::size_t what = bits(5, 7);
      if (what < 5) {
        std::erase_if(model, [&](const Waiting& other) {
          const auto& same = *other.notification;
          return mask != 0 &&
                 ((mask & 1U) == 0 || same.name()->isEqualToString(notification->name())) &&
                 ((mask & 2U) == 0 || same.object() == notification->object());
        });
      }
      if (what == 0) {
        queue->dequeueNotificationsMatching_coalesceMask(notification, mask);
      } else if (what < 5) {
        queue->enqueueNotification_postingStyle_coalesceMask_forModes(
            notification, what == 1 ? NSPostWhenIdle : NSPostASAP, mask,
            NSMake<NSArray>({modes[mode]}));
        model.push_back({notification, what == 1, mode});
      } else {
        // A pass, and one that goes on to the idle moment, which is in the default mode.
        const bool goesOn = what == 6 && mode == 0;
        std::vector<NSRef<NSNotification>> expected;
        for (const bool isIdle : {false, true}) {
          std::erase_if(model, [&](const Waiting& waiting) {
            if (waiting.isIdle != isIdle || waiting.mode != mode || (isIdle && !goesOn))
              return false;
            expected.push_back(waiting.notification);
            return true;
          });
        }
        if (goesOn) {
          (void)NSRunLoop::currentRunLoop()->performPass();
        } else {
          makePass(modes[mode]);
        }
        RC_ASSERT(witness.taken() == expected);
      }
    }
    for (const auto& name : names) queue->dequeueNotificationsMatching_coalesceMask(about(name), 1);
  });
}

TEST(NSNotificationQueue, EnqueuesOnTheMainThreadLater) {
  Witness witness;
  const auto queue = NSNotificationQueue::defaultQueue();
  const auto loop = NSRunLoop::currentRunLoop();
  // Not even enqueued when it returns: there is nothing to remove, nor to coalesce with.
  enqueueNotificationInMainThread_postingStyle(about(changed), NSPostNow);
  dequeueNotificationsMatching_object_coalesceMask(queue, changed, nullptr, 1);
  EXPECT_EQ(witness.names(), "");
  makePass();
  EXPECT_EQ(witness.names(), "Changed ");
  // Within a pass it is a later pass's, in a nested one too.
  loop->performBlock([&] {
    enqueueNotificationInMainThread_postingStyle(about(closed), NSPostASAP);
    EXPECT_EQ(witness.names(), "");
    firePendingNotifications(queue);
    EXPECT_EQ(witness.names(), "Closed ");
  });
  makePass();
  // The latest of equal name and sender, and each with a sender of its own.
  const auto latest = about(changed);
  for (const auto& one : {about(changed), latest, about(changed, queue)}) {
    enqueueNotificationInMainThread_postingStyle(one, NSPostASAP);
  }
  makePass();
  const auto posted = witness.taken();
  EXPECT_EQ(posted.size(), 2U);
  EXPECT_PRED2(areSame, posted.front(), latest);

  const auto pair = [](const auto&... elements) { return NSMake<NSArray>({elements...}); };
  // The number counts as 32 bits with a sign.
  _mainThreadEnqueue(pair(about(changed), NSMake<NSNumber>(0x1'0000'0003)));
  EXPECT_EQ(witness.names(), "Changed ");
  expectRaises(NSInvalidArgumentException,
               "there is no posting style -1 "
               "(in 'enqueueNotification:postingStyle:coalesceMask:forModes:')",
               [&] { _mainThreadEnqueue(pair(about(changed), NSMake<NSNumber>(0xFFFF'FFFF))); });
  EXPECT_THROW(_mainThreadEnqueue(pair(about(changed))), NSException);
}

TEST(NSNotificationQueue, HandsOnWhatItIsGiven) {
  Witness witness;
  const auto queue = NSNotificationQueue::defaultQueue();
  const auto info = NSMake<NSDictionary>({{u"key"_ns, changed}});
  enqueueNotificationName_object_userInfo_postingStyle(queue, changed, queue, info, NSPostNow);
  const auto posted = witness.taken();
  ASSERT_EQ(posted.size(), 1U);
  EXPECT_TRUE(posted[0]->userInfo()->isEqual(info));
  EXPECT_EQ(posted[0]->object(), queue);
  // Mask and modes, and nothing is the same without a bit of the mask.
  for (int k = 0; k < 2; ++k) {
    enqueueNotificationName_object_userInfo_postingStyle_coalesceMask_forModes(
        queue, closed, nullptr, info, NSPostASAP, NSNotificationNoCoalescing,
        NSMake<NSArray>({u"tracking"_ns}));
  }
  dequeueNotificationsMatching_object_coalesceMask(queue, closed, nullptr,
                                                   NSNotificationNoCoalescing);
  firePendingNotifications(queue);
  EXPECT_EQ(witness.names(), "");
  makePass(u"tracking"_ns);
  EXPECT_EQ(witness.names(), "Closed Closed ");
  refusesNil("name", "notificationWithName:object:userInfo:", [&] {
    enqueueNotificationName_object_postingStyle(queue, nullptr, nullptr, NSPostNow);
  });
  refusesNil("notification", "dequeueNotificationsMatching:coalesceMask:", [&] {
    queue->dequeueNotificationsMatching_coalesceMask(nullptr, 1);
  });
}

}  // namespace
