package androidx.annotation;

import java.lang.annotation.Documented;
import java.lang.annotation.ElementType;
import java.lang.annotation.Retention;
import java.lang.annotation.RetentionPolicy;
import java.lang.annotation.Target;

/** Marks a number within a closed interval. */
@Documented
@Retention(RetentionPolicy.CLASS)
@Target({ElementType.PARAMETER, ElementType.METHOD, ElementType.FIELD})
public @interface FloatRange {
    /**
     * The least value.
     *
     * @return the lower end, itself included
     */
    double from() default Double.NEGATIVE_INFINITY;

    /**
     * The greatest value.
     *
     * @return the upper end, itself included
     */
    double to() default Double.POSITIVE_INFINITY;
}
