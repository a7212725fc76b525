#pragma once

// What Clang's thread-safety analysis is told (-Wthread-safety); nothing for other compilers. base/mutex.h has the lock
// that these speak of.
#if defined(__clang__)
#define BASE_THREAD_ANNOTATION(attribute) __attribute__((attribute))
#else
#define BASE_THREAD_ANNOTATION(attribute)
#endif

#define CAPABILITY(name) BASE_THREAD_ANNOTATION(capability(name))  // a class that is a lock
#define SCOPED_CAPABILITY BASE_THREAD_ANNOTATION(scoped_lockable)  // a class that holds one while it lives
#define GUARDED_BY(lock) BASE_THREAD_ANNOTATION(guarded_by(lock))  // a member that is only used with the lock held
#define REQUIRES(lock) BASE_THREAD_ANNOTATION(requires_capability(lock))  // a function that is called with it held
#define EXCLUDES(lock) BASE_THREAD_ANNOTATION(locks_excluded(lock))       // a function that is called without it
#define ASSERT_CAPABILITY(lock) BASE_THREAD_ANNOTATION(assert_capability(lock))  // returns only where it is held
#define ACQUIRE(...) BASE_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define RELEASE(...) BASE_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
