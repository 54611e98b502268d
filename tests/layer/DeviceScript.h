#pragma once

/// Does what each line of standard input says, and answers each with one line: see the table in the source.
void answerQuestions();
