// Made from docs/step.schema.json by tools/step-types.mjs.

export type Probability = number;

export type Values = string[];

export type Candidate = {
    p: Probability;
    rank: number;
    modes: Record<string, string>;
    since: Record<string, number>;
    lost: Values;
    misread?: Values;
    unexplained: Values;
};

export type StepRecord = {
    v: 2;
    step: number;
    t: number;
    time?: string;
    status: "nominal" | "faulty" | "ambiguous" | "inconsistent" | "stale";
    fault: Probability;
    complete: boolean;
    approximate: boolean;
    limit: "records" | "seconds" | "work" | "memory" | "interrupted" | null;
    gap: number | null;
    held: Values;
    kept: number;
    dropped: number;
    missing: Probability;
    silent: Probability;
    candidates: Candidate[];
    marginals: Record<string, Record<string, Probability>>;
    components: Record<string, Probability>;
    work: {
        records: number;
        flips: number;
        components: number;
    };
};
