#include "ierrorhandler.h"

IErrorHandler::~IErrorHandler() = default;

IErrorHandlerBase::~IErrorHandlerBase() = default;
