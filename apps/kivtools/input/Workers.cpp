#include "apps/kivtools/input/Workers.h"

#include <algorithm>
#include <utility>

namespace kivtools {

Workers::Workers(std::size_t most, Starter starter) : starter_(std::move(starter)), most_(most) {
  threads_.reserve(most);  // so that a thread that has been started always has a place here
}

Workers::~Workers() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
    jobs_.clear();
  }
  given_.notify_all();
  for (std::thread& thread : threads_) {
    thread.join();
  }
}

std::thread Workers::Start(std::function<void()> body) {
  return std::thread(std::move(body));
}

std::size_t Workers::UsefulNumber() noexcept {
  return std::clamp(std::thread::hardware_concurrency(), 1U, 8U);
}

void Workers::Give(Job& job) {
  std::unique_lock lock(mutex_);
  jobs_.push_back(&job);
  job.fault = nullptr;
  job.done = false;
  if (idle_ < jobs_.size() && threads_.size() < most_) {
    StartOne();
  }
  if (threads_.empty()) {
    DoNext(lock);
  } else {
    given_.notify_one();
  }
}

void Workers::Wait(const Job& job) {
  std::unique_lock lock(mutex_);
  done_.wait(lock, [&] { return job.done; });
}

void Workers::StartOne() {
  try {
    threads_.push_back(starter_([this] { DoJobs(); }));
  } catch (...) {
    most_ = threads_.size();  // it goes on with those that there are
  }
}

void Workers::DoJobs() {
  std::unique_lock lock(mutex_);
  for (;;) {
    ++idle_;
    given_.wait(lock, [&] { return ending_ || !jobs_.empty(); });
    --idle_;
    if (jobs_.empty()) {
      return;
    }
    DoNext(lock);
  }
}

void Workers::DoNext(std::unique_lock<std::mutex>& lock) {
  Job& job = *jobs_.front();
  jobs_.pop_front();
  lock.unlock();
  try {
    job.work();
  } catch (...) {
    job.fault = std::current_exception();
  }
  lock.lock();
  job.done = true;
  done_.notify_all();
}

}  // namespace kivtools
