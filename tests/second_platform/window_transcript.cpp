void WriteWindowTranscript() {}
