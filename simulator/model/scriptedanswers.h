/* Answers a request of the library as a matching script specifies, else as the machine does. */
#ifndef SIMULATOR_MODEL_SCRIPTEDANSWERS_H
#define SIMULATOR_MODEL_SCRIPTEDANSWERS_H

#include "simulator/model/model.h"

tModelReply answerDriverRequest(tModel* model, const tModelRequest* request);

#endif
