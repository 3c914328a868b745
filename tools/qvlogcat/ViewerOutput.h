// ViewerOutput.h - what is printed, on its way to standard output.
#ifndef QVLOGCAT_VIEWEROUTPUT_H
#define QVLOGCAT_VIEWEROUTPUT_H

#include <string>

class ViewerOutput {
 public:
  explicit ViewerOutput(int aDescriptor) : mDescriptor(aDescriptor) {}

  // What is appended here goes out with one of the next flushes.
  std::string& Buffer() { return mBuffer; }
  // Writes the buffer when it holds much.
  void FlushIfLarge();
  void Flush();
  // Waits so long, and notices a reader that goes meanwhile.
  void Rest(int aMilliseconds);

  bool HasEnded() const { return mfEnded; }  // nothing more can be written
  // The error that has ended it; 0 when the reader has gone or a signal has come, which is no error.
  int Error() const { return mError; }

 private:
  void End(int anError);

  int mDescriptor;
  std::string mBuffer;
  bool mfEnded = false;
  int mError = 0;
};

#endif
