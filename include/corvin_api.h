/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers */

/** @file corvin_api.h
 *  What marks the functions of the library; the other headers include it. */

#ifndef CORVIN_API_H_
#define CORVIN_API_H_

/* A host that links the library in another way may define it otherwise before. */
#ifndef CORVIN_API
#define CORVIN_API __attribute__((visibility("default")))
#endif

#endif /* CORVIN_API_H_ */
