#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace kivtools {

/// Threads that do jobs for one thread that gives them. They are started when there is work for them and have ended
/// when this object is gone. Where the system gives no thread, the giver does the jobs itself.
class Workers {
 public:
  /// A piece of work; it has to stay until it is done or the workers are gone.
  struct Job {
    std::function<void()> work;
    std::exception_ptr fault;  ///< what the work threw
    bool done = true;          ///< also before it is first given
  };
  /// Starts a thread. Throws where there is none to be had.
  using Starter = std::function<std::thread(std::function<void()> body)>;

  explicit Workers(std::size_t most, Starter starter = Start);
  /// Waits for the jobs that have begun; the others are dropped.
  ~Workers();
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  /// The system's own threads.
  static std::thread Start(std::function<void()> body);
  /// How many jobs are worth being given at once.
  static std::size_t UsefulNumber() noexcept;

  void Give(Job& job);
  /// Returns when the job is done.
  void Wait(const Job& job);

 private:
  void StartOne();
  void DoJobs();
  void DoNext(std::unique_lock<std::mutex>& lock);

  Starter starter_;
  std::size_t most_;
  std::vector<std::thread> threads_;
  std::mutex mutex_;
  std::condition_variable given_;
  std::condition_variable done_;
  std::deque<Job*> jobs_;
  std::size_t idle_ = 0;
  bool ending_ = false;
};

}  // namespace kivtools
