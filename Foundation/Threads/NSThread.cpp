#include "Foundation/NSThread.h"

#include <string>
#include <utility>

#include <pthread.h>
#include <unistd.h>

#include <Foundation/NSAutoreleasePool.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSRunLoop.h>
#include <Foundation/NSString.h>
#include <Foundation/Objects/Access.h>
#include <Foundation/Threads/RunLoopCore.h>
#include <Foundation/Threads/SystemThreads.h>

// What a thread knows of itself. It needs no destructor, so that the last objects which die with
// the thread may still ask.
struct NSThread::Current {
  NSThread* thread = nullptr;
  NSRunLoopCore* runLoop = nullptr;
  bool isGone = false;

  static Current& get() noexcept {
    static thread_local Current current;
    return current;
  }
  void enter(const NSRef<NSThread>& self) {
    self->begin();
    self->retain();
    thread = self.get();
  }
  void leave() {
    if (thread == nullptr) return;
    thread->finish();
    isGone = true;
    runLoop = nullptr;
    (void)NSRef<NSThread>::adopt(std::exchange(thread, nullptr));
  }
};

// The end of a thread that something else began, or that ends itself within its work.
class NSThread::End {
 public:
  static void await() {
    static thread_local const End end;
    (void)end;
  }
  End(const End&) = delete;
  ~End() {
    const NSAutoreleasePool pool;
    Current::get().leave();
  }

 private:
  End() {
    // What is released with the thread is released after this.
    const NSAutoreleasePool pool;
  }
};

NSThread::NSThread(NSRef<NSObject> target, NSSelector selector, NSRef<NSObject> argument)
    : NSThread([target = std::move(target), selector, argument = std::move(argument)] {
        selector.perform(target, argument);
      }) {}

NSThread::~NSThread() {
  const auto runLoop = NSRef<NSRunLoop>::adopt(_runLoop);
  // Of a thread that never ran.
  if (runLoop && !isFinished()) NSAccess::core(*runLoop).end();
}

bool NSThread::isMainThread() noexcept {
  static thread_local const bool isMain = gettid() == getpid();
  return isMain;
}

NSRef<NSThread> NSThread::mainThread() {
  static NSNeverDestroyed<NSRef<NSThread>> thread([] {
    auto main = NSMake<NSThread>();
    main->_state = State::executing;
    main->_number = getpid();
    return main;
  }());
  return *thread;
}

NSRef<NSThread> NSThread::currentThread() {
  if (isMainThread()) return mainThread();
  Current& current = Current::get();
  if (current.thread == nullptr) {
    auto adopted = NSMake<NSThread>();
    if (current.isGone) {
      adopted->_state = State::finished;
      return adopted;
    }
    End::await();
    current.enter(adopted);
  }
  return share(current.thread);
}

NSRunLoopCore* NSRunLoopCore::current() {
  auto& current = NSThread::Current::get();
  if (current.runLoop == nullptr && !current.isGone) {
    current.runLoop = &NSAccess::core(*NSRunLoop::currentRunLoop());
  }
  return current.runLoop;
}

void NSThread::detachNewThreadSelector_toTarget_withObject(NSSelector selector,
                                                           NSRef<NSObject> target,
                                                           NSRef<NSObject> argument) {
  NSMake<NSThread>(std::move(target), selector, std::move(argument))->start();
}

void NSThread::start() {
  auto ready = State::ready;
  if (!_state.compare_exchange_strong(ready, State::executing)) {
    NSException::raise(NSGenericException, "the thread has been started (in 'start')");
  }
  if (const auto error = NSDetachThread([self = share(this)] { self->run(); })) {
    _state = State::ready;
    NSRaiseSystemError(error, "start");
  }
}

void NSThread::run() noexcept {
  Current& current = Current::get();
  End::await();
  current.enter(share(this));
  showName();
  const NSAutoreleasePool pool;
  {
    const NSAutoreleasePool ofMain;
    NSCallOrTerminate([this] { main(); });
  }
  _work.reset();
  current.leave();
}

void NSThread::main() {
  std::unique_lock lock(_mutex);
  auto work = std::exchange(_work, std::nullopt);
  lock.unlock();
  if (work) work->perform();
}

// On the thread itself.
void NSThread::begin() {
  const std::lock_guard lock(_mutex);
  _state = State::executing;
  _number = NSThreadNumber();
  if (_runLoop != nullptr) NSAccess::core(*_runLoop.load()).begin(_number);
}

void NSThread::finish() {
  NSRunLoop* runLoop = nullptr;
  {
    const std::lock_guard lock(_mutex);
    _state = State::finished;
    runLoop = _runLoop;
  }
  if (runLoop != nullptr) NSAccess::core(*runLoop).end();
}

NSRef<NSString> NSThread::name() const {
  const std::lock_guard lock(_mutex);
  return _name ? _name : NSMake<NSString>();
}

void NSThread::setName(const NSRef<NSString>& name) {
  {
    const std::lock_guard lock(_mutex);
    _name = name ? name->copy() : nullptr;
  }
  if (Current::get().thread == this) showName();
}

NSRef<NSString> NSThread::description() const {
  const std::string text = this == mainThread().get() ? "main" : name()->utf8();
  return NSMake<NSString>(objectClass().name()->utf8() + ' ' +
                          (text.empty() ? "without a name" : text));
}

// The system takes so many bytes; half a character is left out.
void NSThread::showName() const {
  constexpr std::size_t longest = 15;
  std::string text = name()->utf8();
  if (text.empty()) return;
  if (text.size() > longest) {
    std::size_t size = longest;
    while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80U) --size;
    text.resize(size);
  }
  pthread_setname_np(pthread_self(), text.c_str());
}

NSRef<NSRunLoop> NSThread::runLoop() {
  NSRunLoop* runLoop = _runLoop;
  if (runLoop == nullptr) {
    const std::lock_guard lock(_mutex);
    runLoop = _runLoop;
    if (runLoop == nullptr) {
      auto made = NSMake<NSRunLoop>(NSPasskey<NSThread>());
      NSAccess::core(*made).begin(_number);
      if (isFinished()) NSAccess::core(*made).end();
      _runLoop = runLoop = made.leak();
    }
  }
  return NSRef<NSRunLoop>::share(runLoop);
}
