#include "tests/support/reports.h"

namespace qor::test {
namespace {

thread_local std::vector<ErrorContext> seen;

int32_t write_down(ErrorContext* context) {
  seen.push_back(*context);
  return 1;
}

}  // namespace

ReportLog::ReportLog(uint32_t more_mode_fields)
    : mode_before_(_arkSetMode(QOR_MODE_ERRORS_CALLBACK | more_mode_fields)) {
  seen.clear();
  _arkClearErrStatus();
  _arkSetErrorCallBack(write_down);
}

ReportLog::~ReportLog() {
  _arkClearErrorCallBack();
  restore_mode(mode_before_);
  _arkClearErrStatus();
}

const std::vector<ErrorContext>& ReportLog::reports() const { return seen; }
void ReportLog::clear() { seen.clear(); }

}  // namespace qor::test
