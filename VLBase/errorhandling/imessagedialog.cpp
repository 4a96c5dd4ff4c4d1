#include "imessagedialog.h"

IMessageDialog::~IMessageDialog() = default;

void IMessageDialog::CloseAll() {}
