#pragma once

#include <VLBase/vlbase_export.h>

class Observable;

/// What has changed. The codes are the caller's; the library passes them on.
enum TChangeCode : int {};

/// Is told of the changes of an `Observable`.
class VLBASE_EXPORT IObserver
{
public:
    virtual ~IObserver();

    /// \param source the object that changed.
    virtual void Update(Observable* source, TChangeCode code) = 0;
};
