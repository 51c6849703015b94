/* How a request of the library is answered: by the machine, or as a script says. */
#ifndef SIMULATOR_MODEL_SCRIPTEDANSWERS_H
#define SIMULATOR_MODEL_SCRIPTEDANSWERS_H

#include "simulator/model/model.h"

tModelReply answerDriverRequest(tModel* model, const tModelRequest* request);

#endif
