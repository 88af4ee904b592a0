#pragma once

/// Number of files and other objects of the system that this process holds open.
int openHandles();

/// Processor time that this process has used.
double processorSeconds();
