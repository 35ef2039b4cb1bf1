// Sets a variable of the environment for the life of the object.
#pragma once

#include <QByteArray>
#include <QString>

#include <utility>

namespace pictorel {

class ScopedEnvironment {
  public:
    ScopedEnvironment(const char* name, const QString& value)
        : name_(name), wasSet_(qEnvironmentVariableIsSet(name)), before_(qgetenv(name)) {
        qputenv(name, value.toLocal8Bit());
    }
    ~ScopedEnvironment() {
        if (wasSet_) {
            qputenv(name_, before_);
        } else {
            qunsetenv(name_);
        }
    }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

  private:
    const char* name_;
    bool wasSet_;
    QByteArray before_;
};

} // namespace pictorel
